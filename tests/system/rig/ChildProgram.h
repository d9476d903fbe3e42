// A program in a process of its own.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

namespace rig {

// Started by the shell, without a standard input of its own; what it prints is read from here. The
// end of this object waits for the end of the program.
class ChildProgram {
 public:
  explicit ChildProgram(const std::string& command) : output_(popen(command.c_str(), "r")) {
    if (!output_) throw std::runtime_error("cannot run " + command);
  }

  // Everything that it prints from here to its end.
  std::string readAll() {
    std::string text;
    for (int byte; (byte = std::fgetc(output_.get())) != EOF;) text += static_cast<char>(byte);
    return text;
  }

  // Waits for the end of the program: its exit code, or -1 when it was killed. Called once, last.
  int exitCode() {
    const int status = pclose(output_.release());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  struct Closer {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
  };
  std::unique_ptr<std::FILE, Closer> output_;
};

inline std::string outputOf(const std::string& command) { return ChildProgram(command).readAll(); }

}  // namespace rig
