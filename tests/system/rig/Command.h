// Other programs that a test needs.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace rig {

// A program that runs beside the test, and is ended with this object.
class Command {
 public:
  explicit Command(const std::vector<std::string>& words);
  ~Command();
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

 private:
  pid_t pid_;
};

// What a shell command prints, when it has ended.
std::string run(const std::string& command);

// Whether a condition that nothing announces comes to hold within the time that a test waits.
bool eventually(const std::function<bool()>& condition);

}  // namespace rig
