#include "tests/rig/Commands.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace rig {
namespace {

void writeFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void runInShell(const std::string& script) {
  if (std::system(script.c_str()) != 0) throw std::runtime_error("cannot run: " + script);
}

}  // namespace

ScratchDirectory::ScratchDirectory() : path_(testing::TempDir() + "quorvel-unit-XXXXXX") {
  if (!mkdtemp(path_.data())) throw std::runtime_error("cannot make " + path_);
}

ScratchDirectory::~ScratchDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string outputOf(const std::string& command, const std::string& input) {
  const ScratchDirectory scratch;
  writeFile(scratch.path() + "/in", input);
  runInShell("cd '" + scratch.path() + "' && (" + command + ") < in > out");
  return readFile(scratch.path() + "/out");
}

std::vector<CommandResult> resultsOf(const std::string& command,
                                     const std::vector<std::string>& inputs) {
  const ScratchDirectory scratch;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    writeFile(scratch.path() + "/" + std::to_string(i) + ".in", inputs[i]);
  }
  runInShell("cd '" + scratch.path() + "' && for in in *.in; do out=${in%.in}; (" + command +
             ") < $in > $out.out 2> /dev/null && : > $out.ok; done; :");
  std::vector<CommandResult> results;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const std::string name = scratch.path() + "/" + std::to_string(i);
    results.push_back({std::filesystem::exists(name + ".ok"), readFile(name + ".out")});
  }
  return results;
}

}  // namespace rig
