// The threads of this process, as the kernel accounts for them.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <set>

#include "tests/rig/Patience.h"

namespace rig {

std::set<pid_t> threads();

// The thread that `action` has added. Throws when it has not added exactly one.
pid_t threadAddedBy(const std::function<void()>& action);

// How many threads this process has. One that was joined is listed for a moment longer: this waits
// for the moment to pass, and then until there are no more than `count`.
std::size_t settledThreadCount();
void awaitThreadCount(std::size_t count);

// The processor time that the thread has used.
std::chrono::nanoseconds processorTime(pid_t thread);

// How often the thread has laid itself to rest.
long long restsOf(pid_t thread);

// Whether the thread takes no signals of this number.
bool blocks(pid_t thread, int signal);

// What the thread has read: how often it has called read, and the bytes it got.
struct Reading {
  long long calls;
  long long bytes;
};
Reading readingOf(pid_t thread);

}  // namespace rig
