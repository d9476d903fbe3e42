// How long tests wait.
#pragma once

#include <chrono>
#include <functional>

namespace rig {

// For anything that must happen. Only a failing test waits this long, so it is generous enough for
// a busy machine.
inline constexpr std::chrono::seconds kPatience{20};

// Waits until the condition holds, for what no event tells of. Throws std::runtime_error, which
// names `what`, when it does not hold within kPatience.
void await(const char* what, const std::function<bool()>& condition);

}  // namespace rig
