// Command lines that the tools refuse.
#pragma once

#include <string>

#include "tests/rig/Program.h"

namespace rig {

struct Refusal {
  Words words;  // those after the program's name
  int code;     // the exit code
  // The message in either language; null when it is somebody else's text.
  const char* english;
  const char* russian;
};

// Runs the program once in each language, without a display. The test fails unless it exits with
// the code, prints nothing, and says in one line what is wrong: its name, a colon and the message.
void expectRefusal(const std::string& program, const Refusal& refusal);

}  // namespace rig
