// Asks the system's own programs what is right.
#pragma once

#include <string>
#include <vector>

namespace rig {

// A directory of its own, removed with everything in it.
class ScratchDirectory {
 public:
  ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory();

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// What one run of a shell command writes to its standard output when `input` is its standard input.
std::string outputOf(const std::string& command, const std::string& input);

struct CommandResult {
  bool succeeded;
  std::string output;
};

// Runs the command once for each input, all in one shell.
std::vector<CommandResult> resultsOf(const std::string& command,
                                     const std::vector<std::string>& inputs);

}  // namespace rig
