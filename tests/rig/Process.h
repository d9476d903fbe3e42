// The resources that this process uses, as the kernel and the C library count them.
#pragma once

#include <cstddef>

namespace rig {

std::size_t threadCount();
std::size_t descriptorCount();  // open ones

// Bytes allocated and not yet freed. Always 0 under a sanitizer, which finds leaks itself.
std::size_t heapBytes();

// This process's processor time, and elapsed real time, in seconds.
struct Times {
  double processor;
  double wall;
};
Times timesNow();
Times timesSince(const Times& before);

}  // namespace rig
