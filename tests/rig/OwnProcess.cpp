#include "tests/rig/OwnProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace rig {
namespace {

// In seconds; after that the alarm ends the process.
constexpr unsigned kLongestLife = 300;

[[noreturn]] void runAndExit(const std::function<void()>& body) {
  alarm(kLongestLife);
  try {
    body();
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  std::cout.flush();
  // exit, not _exit: a leak checker reports at exit.
  std::exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

void removeSerialPorts() {
  std::vector<std::filesystem::path> ports;
  for (const auto& entry : std::filesystem::directory_iterator("/dev")) {
    const std::string name = entry.path().filename();
    if (name.starts_with("tty") && name != "tty") ports.push_back(entry.path());
  }
  for (const std::filesystem::path& port : ports) std::filesystem::remove(port);
}

}  // namespace

void inOwnProcess(const std::function<void()>& body) {
  std::cout.flush();
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) runAndExit(body);
  int status = 0;
  waitpid(child, &status, 0);
  removeSerialPorts();
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), EXIT_SUCCESS) << "see what the process said above";
}

}  // namespace rig
