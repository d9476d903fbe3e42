// How long tests wait.
#pragma once

#include <chrono>

namespace rig {

// For anything that must happen. Only a failing test waits this long, so it is generous enough for
// a busy machine.
inline constexpr std::chrono::seconds kPatience{20};

}  // namespace rig
