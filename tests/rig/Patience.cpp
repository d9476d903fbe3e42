#include "tests/rig/Patience.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <thread>

namespace rig {

void await(const char* what, const std::function<bool()>& condition) {
  using std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kEager{1};
  constexpr steady_clock::duration kLongestPause = std::chrono::milliseconds(20);
  const auto start = steady_clock::now();
  while (!condition()) {
    const auto waited = steady_clock::now() - start;
    if (waited > kPatience) {
      throw std::runtime_error(std::string("timed out waiting for ") + what);
    }
    // Most conditions hold soon. Those that do not are asked ever less often: where asking takes
    // milliseconds, as under valgrind, it would take the processor from what is waited for.
    if (waited < kEager) {
      std::this_thread::yield();
    } else {
      std::this_thread::sleep_for(std::min(waited / 8, kLongestPause));
    }
  }
}

}  // namespace rig
