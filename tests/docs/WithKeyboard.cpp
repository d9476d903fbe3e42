// Runs a command on an X server of its own with one keyboard, which the command may type on.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "tests/rig/XServer.h"

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr
        << "usage: with_keyboard NAME COMMAND [ARGUMENT...]\n"
           "DISPLAY names the server to the command, QUORVEL_KEYBOARD the keyboard's socket.\n";
    return 2;
  }
  try {
    const rig::XServer server({argv[1]});
    setenv("DISPLAY", server.display().c_str(), 1);
    setenv("QUORVEL_KEYBOARD", server.keyboardSocket(0).c_str(), 1);
    const pid_t command = fork();
    if (command == 0) {
      execvp(argv[2], argv + 2);
      std::cerr << argv[2] << " cannot be run\n";
      _exit(EXIT_FAILURE);
    }
    int status = -1;
    waitpid(command, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
