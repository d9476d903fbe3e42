// What memory this process takes.
#pragma once

#include <fstream>
#include <limits>
#include <string>

namespace bench {

// In kilobytes. What is proportional to other users of the same pages is left out: it tells more
// about the machine than about the process.
struct Memory {
  double resident = 0;
  double dirty = 0;  // and private
};

inline Memory memoryInUse() {
  Memory memory;
  std::ifstream file("/proc/self/smaps_rollup");
  file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  std::string what;
  while (file >> what) {
    double kilobytes = 0;
    file >> kilobytes;
    file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    if (what == "Rss:") memory.resident = kilobytes;
    if (what == "Private_Dirty:") memory.dirty = kilobytes;
  }
  return memory;
}

}  // namespace bench
