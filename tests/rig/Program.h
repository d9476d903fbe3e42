// Another program, run by a test.
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

#include "util/Handles.h"

namespace rig {

using Words = std::vector<std::string>;
// Variables of the environment, set in addition to the test's own.
using Variables = std::vector<std::pair<std::string, std::string>>;

// What a program that has ended has said. `code` is 128 and the number of the signal that ended it.
struct Ending {
  int code;
  std::string output;
  std::string errors;
};

// A running program. Ended by force with its owner, if it is still running then.
class Program {
 public:
  // Looks for the program of the first word as a shell does. Throws std::system_error.
  explicit Program(const Words& words, const Variables& variables = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Writes up to a megabyte to its standard input, and ends that.
  void write(const std::string& input);
  void endInput();

  // The next line of its standard output or error, without its end. Throws when none comes in
  // kPatience.
  std::string line();
  std::string errorLine();

  void signal(int number);

  // Waits until it ends by itself: what it has said since it was last asked. Throws when it does
  // not end in kPatience.
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

// Runs a program to its end, without input.
Ending run(const Words& words, const Variables& variables = {});

// The output of a program that must succeed, given an input of up to a megabyte.
std::string outputOf(const Words& words, const std::string& input = {});

// Runs a shell command once for each input, all in one shell: the endings of all, without what they
// wrote to their standard error.
std::vector<Ending> endingsOf(const std::string& command, const std::vector<std::string>& inputs);

}  // namespace rig
