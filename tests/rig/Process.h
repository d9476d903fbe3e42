// What this process uses, as the kernel and the C library account for it.
#pragma once

#include <cstddef>

namespace rig {

std::size_t threadCount();
std::size_t descriptorCount();  // open ones

// Bytes that this process has allocated and not freed; zero under a sanitizer, which finds leaks
// itself.
std::size_t heapBytes();

// Processor time that this process has used, and time on the wall, in seconds.
struct Times {
  double processor;
  double wall;
};
Times timesNow();
Times timesSince(const Times& before);

}  // namespace rig
