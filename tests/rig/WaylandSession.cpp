#include "tests/rig/WaylandSession.h"

#include <signal.h>

#include <exception>
#include <iostream>
#include <string_view>

namespace rig {

WaylandSession::WaylandSession(const std::string& display)
    : compositor_({"weston", "--backend=x11-backend.so", "--use-pixman", "--shell=kiosk-shell.so",
                   "--xwayland", "--socket=session", "--idle-time=0", "--no-config", "--width=1024",
                   "--height=768"},
                  {{"DISPLAY", display}, {"XDG_RUNTIME_DIR", runtimeFolder_.path()}}) {
  constexpr std::string_view kReady = "xserver listening on display ";
  while (display_.empty()) {
    const std::string line = compositor_.errorLine();
    if (const std::size_t at = line.find(kReady); at != line.npos) {
      display_ = line.substr(at + kReady.size());
    }
  }
}

// Ends in order, so that the compositor gives Xwayland's display number back.
WaylandSession::~WaylandSession() {
  try {
    compositor_.signal(SIGTERM);
    compositor_.end();
  } catch (const std::exception& error) {
    std::cerr << "the compositor does not end: " << error.what() << '\n';
  }
}

}  // namespace rig
