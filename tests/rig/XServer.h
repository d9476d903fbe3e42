// An X server for one test, with keyboards that the test types on.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/rig/ScratchFolder.h"
#include "tools/common/KeyTyping.h"

namespace rig {

// A real X server of the test's own, with a screen in memory and any number of keyboards whose keys
// the test presses. It takes the first free display number, so several may run side by side, and
// ends with this object. One thread at a time.
class XServer {
 public:
  // Returns when the server serves clients. Each of `keyboards` names a keyboard, as clients will
  // see it; names may repeat. Throws std::runtime_error, with the server's log, when it does not
  // start.
  explicit XServer(const std::vector<std::string>& keyboards);
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  // What to put into DISPLAY to reach the server.
  const std::string& display() const { return display_; }

  // The keyboard at this index of `keyboards`. Connects to its socket at the first call, and from
  // then on until the server ends: the driver expects no less.
  terminal::VirtualKeyboard& keyboard(std::size_t index);

  // Connects again to a keyboard that was switched off and on: the driver has ended the connection.
  void reconnectKeyboard(std::size_t index);

  // The socket of that keyboard, for another program to connect to instead.
  std::string keyboardSocket(std::size_t index) const;

  // Kills the server where it stands, as a crash would; no effect when it has ended.
  void kill();

  // Stops the server for a while. What is typed meanwhile comes to it all at once.
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
  std::map<std::size_t, std::unique_ptr<terminal::VirtualKeyboard>> connected_;
};

}  // namespace rig
