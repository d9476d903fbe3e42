// A child process for one test, to contain what cannot be undone, such as initialising GTK.
#pragma once

#include <functional>

namespace rig {

// Runs `body` in a child process and waits for it. The calling test fails when an expectation in
// `body` fails, when it throws, or when it does not return. Removes any serial ports that it leaves
// in /dev.
void inOwnProcess(const std::function<void()>& body);

}  // namespace rig
