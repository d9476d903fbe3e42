// Reading a command line by a table of options, and the shape of a program with commands.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/common/Language.h"

namespace terminal {

using Arguments = std::vector<std::string>;

// The command line cannot be understood; the message is one line.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A long option. `apply` is given its value, empty for an option that takes none, and throws
// UsageError for a value that it cannot use.
struct Option {
  const char* name;
  bool takesValue;
  std::function<void(const std::string& value)> apply;
};

// Applies the options in their order and returns the other arguments. With `stopAtFirst` everything
// from the first other argument on is returned unread. Throws UsageError.
Arguments readOptions(const Arguments& arguments, const std::vector<Option>& options,
                      bool stopAtFirst = false);

// One thing that a program does, by the first word of its command line.
struct Command {
  const char* name;
  Text help;
  std::function<int(const Arguments& arguments)> run;
  // Prints what the help can only tell at run time; may be empty.
  std::function<void()> printMoreHelp = {};
};

struct ProgramDescription {
  const char* name;
  Text help;
  std::vector<Option> options;  // before the command
  std::vector<Command> commands;
};

// Runs the command that `words` name, with the words after it. --help or -h, at any place before a
// "--", prints the help of the program or of the command instead, as `help [COMMAND]` does;
// --version prints the version. Throws UsageError.
int runCommand(const ProgramDescription& program, const Arguments& words);

// A number in decimal, within bounds. Throws UsageError, which names `what`.
double numberFrom(const std::string& text, const char* what, double lowest, double highest);
std::int32_t integerFrom(const std::string& text, const char* what, std::int32_t lowest,
                         std::int32_t highest);

// The whole content of a file; throws std::runtime_error.
std::string readFile(const std::string& path);

// Runs the body of a program, and turns what it throws into one line and an exit code: 2 for a
// UsageError, 1 for everything else, an output that cannot be written among it.
int runProgram(const char* name, const std::function<int()>& body);

}  // namespace terminal
