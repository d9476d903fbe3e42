// Command lines: a table-driven option parser, and programs made of commands.
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

// Applies the options in the order given and returns the other arguments. With `stopAtFirst`,
// parsing ends at the first argument that is not an option, and the rest is returned as it is.
// Throws UsageError.
Arguments readOptions(const Arguments& arguments, const std::vector<Option>& options,
                      bool stopAtFirst = false);

// Throws UsageError unless there are none.
void refuseArguments(const Arguments& rest);

// A subcommand, named by the first word of the command line.
struct Command {
  const char* name;
  Text help;
  std::function<int(const Arguments& arguments)> run;
  // Prints the part of the help that is known only at run time; may be empty.
  std::function<void()> printMoreHelp = {};
};

struct ProgramDescription {
  const char* name;
  Text help;
  std::vector<Option> options;  // before the command
  std::vector<Command> commands;
};

// Runs the command that `words` name, with the words after it, and returns the exit code. --help or
// -h anywhere before a "--" prints the help of the program or of the command instead, as does
// `help [COMMAND]`; --version prints the version. Throws UsageError.
int runCommand(const ProgramDescription& program, const Arguments& words);

// A decimal number within the bounds. Otherwise throws UsageError, with `what` in its message.
double numberFrom(const std::string& text, const char* what, double lowest, double highest);
std::int32_t integerFrom(const std::string& text, const char* what, std::int32_t lowest,
                         std::int32_t highest);

// The whole content of a file. Throws std::system_error.
std::string readFile(const std::string& path);

// Runs the body of a program. An exception becomes one line of error output and the exit code: 2
// for a UsageError, 1 for any other, including standard output that cannot be written.
int runProgram(const char* name, const std::function<int()>& body);

}  // namespace terminal
