// Assertions of the fuzz targets.
#pragma once

#include <cstdlib>

// Aborts unless `holds`; the fuzzer then reports the input.
inline void require(bool holds) {
  if (!holds) std::abort();
}
