// How often the process has allocated memory with operator new.
#pragma once

#include <cstddef>

namespace bench {

// On all threads, since the process started. Counts in programs that link the source file, which
// replaces operator new; the libraries that they load use it as well.
std::size_t allocationCount();

}  // namespace bench
