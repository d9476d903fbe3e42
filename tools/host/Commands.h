// The commands of quorvel-host, each with its help. A command parses its own arguments, throws
// UsageError when they are wrong, and returns the exit code.
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
// Prints the parameters that --set accepts, from the component's form.
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
