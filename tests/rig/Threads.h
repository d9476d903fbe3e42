// The threads of this process, as the kernel sees them.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <set>

#include "tests/rig/Patience.h"

namespace rig {

std::set<pid_t> threads();

// The thread that `action` starts. Throws unless it starts exactly one.
pid_t threadAddedBy(const std::function<void()>& action);

// The number of threads, and a wait until there are at most `count`. The kernel lists a thread for
// a moment after it was joined; settledThreadCount lets that moment pass first.
std::size_t settledThreadCount();
void awaitThreadCount(std::size_t count);

// The processor time that the thread has used.
std::chrono::nanoseconds processorTime(pid_t thread);

// How many times the thread has gone to sleep, as in a wait.
long long sleepCount(pid_t thread);

// Whether the thread blocks this signal.
bool blocks(pid_t thread, int signal);

// The thread's calls of read and its relatives, and the bytes they have returned.
struct Reading {
  long long calls;
  long long bytes;
};
Reading readingOf(pid_t thread);

}  // namespace rig
