// The processes that have a device file open.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace terminal {

struct Holder {
  pid_t process;
  std::string program;  // its short name, as ps(1) has it
};

// Other processes than this one that have the device open, by the number of the process. Those of
// another user are seen by root only.
std::vector<Holder> holdersOf(const struct stat& device);

}  // namespace terminal
