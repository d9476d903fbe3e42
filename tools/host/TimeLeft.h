// Waiting for a scan, in steps between which the user is told how long there is left.
#pragma once

#include <algorithm>
#include <chrono>

namespace terminal {

// Rounded up; 0 once the time has come.
inline std::chrono::milliseconds timeUntil(std::chrono::steady_clock::time_point time) {
  using std::chrono::milliseconds;
  return std::max(milliseconds(0),
                  std::chrono::ceil<milliseconds>(time - std::chrono::steady_clock::now()));
}

// How long to wait at once, as poll takes it: at most a second.
inline int waitStep(std::chrono::milliseconds left) {
  return static_cast<int>(std::min(left, std::chrono::milliseconds(1000)).count());
}

}  // namespace terminal
