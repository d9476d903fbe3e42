// The commands of quorvel-host. Each reads its own arguments, throws UsageError for what it cannot
// understand, and returns the exit code.
#pragma once

#include "tools/common/CommandLine.h"
#include "tools/common/ComponentHost.h"

namespace terminal {

int runInfo(ComponentLibrary& library, const Arguments& arguments);
int runForm(ComponentLibrary& library, const Arguments& arguments);
int runListen(ComponentLibrary& library, const Arguments& arguments);
int runTest(ComponentLibrary& library, const Arguments& arguments);

}  // namespace terminal
