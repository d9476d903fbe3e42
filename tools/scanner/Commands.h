// The kinds of scanners that quorvel-scanner plays. Each reads its own arguments, throws UsageError
// for what it cannot understand, and returns the exit code.
#pragma once

#include "tools/common/CommandLine.h"

namespace terminal {

int runSerialScanner(const Arguments& arguments);
int runKeyboardScanner(const Arguments& arguments);

}  // namespace terminal
