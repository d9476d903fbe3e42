#include "tests/rig/Process.h"

#include <malloc.h>
#include <time.h>

#include <filesystem>

namespace rig {
namespace {

std::size_t entriesOf(const char* folder) {
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) ++entries;
  return entries;
}

double seconds(clockid_t clock) {
  timespec time;
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

std::size_t threadCount() { return entriesOf("/proc/self/task"); }
std::size_t descriptorCount() { return entriesOf("/proc/self/fd"); }

std::size_t heapBytes() { return mallinfo2().uordblks; }

Times timesNow() { return {seconds(CLOCK_PROCESS_CPUTIME_ID), seconds(CLOCK_MONOTONIC)}; }

Times timesSince(const Times& before) {
  const Times now = timesNow();
  return {now.processor - before.processor, now.wall - before.wall};
}

}  // namespace rig
