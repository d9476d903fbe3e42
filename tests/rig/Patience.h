// How long tests wait.
#pragma once

#include <chrono>
#include <functional>

namespace rig {

// The time limit for anything that must happen. Only a failing test waits this long, so it allows
// for a busy machine.
inline constexpr std::chrono::seconds kPatience{60};

// Polls until the condition holds, for changes that no event announces. Throws std::runtime_error
// with `what` in its message when it does not hold within kPatience.
void await(const char* what, const std::function<bool()>& condition);

}  // namespace rig
