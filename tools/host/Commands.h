// The commands of quorvel-host, and the help of each. A command reads its own arguments, throws
// UsageError for what it cannot understand, and returns the exit code.
#pragma once

#include "tools/common/CommandLine.h"
#include "tools/common/ComponentHost.h"

namespace terminal {

extern const Text kInfoHelp;
int runInfo(ComponentLibrary& library, const Arguments& arguments);

extern const Text kFormHelp;
int runForm(ComponentLibrary& library, const Arguments& arguments);

extern const Text kListenHelp;
int runListen(ComponentLibrary& library, const Arguments& arguments);
// The parameters that --set knows, as the component's form has them.
void printParameters(ComponentLibrary& library);

extern const Text kListHelp;
int runList(const Arguments& arguments);

extern const Text kDoctorHelp;
int runDoctor(ComponentLibrary& library, const Arguments& arguments);

extern const Text kDemoHelp;
int runDemo(ComponentLibrary& library, const Arguments& arguments);

extern const Text kTestHelp;
int runTest(ComponentLibrary& library, const Arguments& arguments);

}  // namespace terminal
