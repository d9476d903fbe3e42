// Running another program.
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

#include "util/Handles.h"

namespace rig {

using Words = std::vector<std::string>;
// Environment variables, set on top of the test's own.
using Variables = std::vector<std::pair<std::string, std::string>>;

// The result of a program. `code` is its exit code, or 128 plus the signal that ended it.
struct Ending {
  int code;
  std::string output;
  std::string errors;
};

// A running program. Killed by the destructor if it is still running.
class Program {
 public:
  // Finds the program named by the first word as a shell does. Throws std::system_error.
  explicit Program(const Words& words, const Variables& variables = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Writes up to a megabyte to its standard input. endInput closes it.
  void write(const std::string& input);
  void endInput();

  // The next line of its standard output or error, without the line feed. Throws when none comes
  // within kPatience.
  std::string line();
  std::string errorLine();

  pid_t process() const { return process_; }
  void signal(int number);

  // Waits until it ends by itself. The result has the output that was not yet read. Throws when it
  // does not end within kPatience.
  Ending end();

 private:
  struct Stream {
    quorvel::FileDescriptor descriptor;
    std::string unread;
    bool atEnd = false;
  };
  void readMore(Stream& stream);
  std::string lineOf(Stream& stream);

  pid_t process_ = -1;
  quorvel::FileDescriptor input_;
  Stream output_;
  Stream errors_;
};

// Runs a program to its end with empty input.
Ending run(const Words& words, const Variables& variables = {});

// The output of a program that must succeed, given an input of up to a megabyte.
std::string outputOf(const Words& words, const std::string& input = {});

// Runs a shell command once for each input, all in one shell. The results lack what was written to
// standard error.
std::vector<Ending> endingsOf(const std::string& command, const std::vector<std::string>& inputs);

}  // namespace rig
