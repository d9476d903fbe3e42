// A process for one test: what cannot be undone in a process, such as preparing GTK, stays in it.
#pragma once

#include <functional>

namespace rig {

// Runs `body` in a child process and waits for it. The calling test fails when an expectation in it
// does, when it throws, and when it does not end by itself. Removes the serial ports that it leaves
// in /dev.
void inOwnProcess(const std::function<void()>& body);

}  // namespace rig
