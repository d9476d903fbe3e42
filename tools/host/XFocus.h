// Whose window has the keyboard focus.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "tools/host/XDisplay.h"

namespace terminal {

struct FocusedProgram {
  pid_t process;
  std::string name;
};

// The program that owns the window with the focus, where that makes the component ignore keys in
// any other program. Nothing when no window names its process, and when the window is the terminal
// in which this program runs.
std::optional<FocusedProgram> programWithFocus(const XDisplay& display);

}  // namespace terminal
