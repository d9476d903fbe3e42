// An X server with keyboards that a test types on.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/rig/ScratchFolder.h"
#include "tools/common/KeyTyping.h"
#include "util/Handles.h"

namespace rig {

// A real X server with a screen in memory and any number of keyboards whose keys the test presses.
// It takes the first free display number, so several can run at once. The destructor ends it. Not
// thread-safe.
class XServer {
 public:
  // Returns when the server accepts clients. `keyboards` are the names of its keyboards as clients
  // see them, and may repeat. Throws std::runtime_error, with the server's log, when it does not
  // start.
  explicit XServer(const std::vector<std::string>& keyboards);
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  // The value for DISPLAY.
  const std::string& display() const { return display_; }

  // The keyboard at this index of `keyboards`. The first call connects to its socket for as long as
  // the server runs, since the server's driver accepts only one connection.
  terminal::VirtualKeyboard& keyboard(std::size_t index);

  // Connects again to a keyboard that was disabled and enabled, which ends the connection.
  void reconnectKeyboard(std::size_t index);

  // The keyboard's socket, for another program to connect to instead.
  std::string keyboardSocket(std::size_t index) const;

  // Kills the server, like a crash. No effect when it has ended. Its display number stays taken, so
  // that clients find no other test's server there; false if one was faster.
  bool kill();

  // Suspends the server; keys typed until goOn reach it all at once.
  void pause() const;
  void goOn() const;

  // What the server has logged so far.
  std::string log() const;

 private:
  void writeConfiguration(const std::vector<std::string>& keyboards) const;
  void start();
  void setLayout() const;
  void end(int signal);

  const ScratchFolder folder_;
  const std::filesystem::path& directory_ = folder_.path();
  std::string display_;
  pid_t pid_ = -1;
  quorvel::FileDescriptor takenNumber_;  // of a server that was killed
  std::map<std::size_t, std::unique_ptr<terminal::VirtualKeyboard>> connected_;
};

}  // namespace rig
