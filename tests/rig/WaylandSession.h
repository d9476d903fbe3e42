// A Wayland session, for X clients in it.
#pragma once

#include <string>

#include "tests/rig/Program.h"
#include "tests/rig/ScratchFolder.h"

namespace rig {

// A compositor whose screen is a window of an X server, and Xwayland, which starts with its first
// client. What is typed at the X server's keyboards, the compositor passes on to the window in the
// session that has the focus.
class WaylandSession {
 public:
  // Returns when X clients are accepted. Throws std::runtime_error.
  explicit WaylandSession(const std::string& display);
  ~WaylandSession();
  WaylandSession(const WaylandSession&) = delete;
  WaylandSession& operator=(const WaylandSession&) = delete;

  // The value for DISPLAY within the session.
  const std::string& display() const { return display_; }

 private:
  const ScratchFolder runtimeFolder_;
  Program compositor_;
  std::string display_;
};

}  // namespace rig
