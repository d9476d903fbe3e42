#include "tests/system/rig/Command.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <thread>

#include "tests/system/rig/Driver.h"

namespace rig {

Command::Command(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no process for " + words.front());
  if (pid_ > 0) return;
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  execvp(arguments.front(), arguments.data());
  _exit(127);
}

Command::~Command() {
  kill(pid_, SIGTERM);
  waitpid(pid_, nullptr, 0);
}

std::string run(const std::string& command) {
  struct Closer {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
  };
  const std::unique_ptr<std::FILE, Closer> pipe(popen(command.c_str(), "r"));
  if (!pipe) throw std::runtime_error("cannot run " + command);
  std::string output;
  char part[4096];
  for (std::size_t got; (got = std::fread(part, 1, sizeof part, pipe.get())) > 0;) {
    output.append(part, got);
  }
  return output;
}

bool eventually(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace rig
