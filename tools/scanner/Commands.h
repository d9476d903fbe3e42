// The kinds of scanners that quorvel-scanner plays. Each parses its own arguments, throws
// UsageError when they are wrong, and returns the exit code.
#pragma once

#include "tools/common/CommandLine.h"

namespace terminal {

int runSerialScanner(const Arguments& arguments);
int runKeyboardScanner(const Arguments& arguments);

}  // namespace terminal
