// What a fuzz target expects to hold for every input.
#pragma once

#include <cstdlib>

// Ends the process, which the fuzzer reports together with the input, unless `holds`.
inline void require(bool holds) {
  if (!holds) std::abort();
}
