#include "devices/XConnection.h"

#include <X11/extensions/XInput2.h>

#include <mutex>

namespace quorvel {
namespace {

// libXi keeps a list of the connections that use it, which it frees with the last and makes anew
// with the first, without a lock: two threads at it at a time would crash the host.
constinit std::mutex usersOfInputExtension;

}  // namespace

XConnection XConnection::open() {
  installXErrorHandlers();
  auto state = std::make_unique<State>();
  Display*& display = state->display;
  XConnection connection;
  if (!guardXCall([&] { display = XOpenDisplay(nullptr); }) || !display) return connection;
  connection.state_.reset(state.release());
  leaveGuardedCallsOnLoss(connection.get());
  const std::lock_guard lock(usersOfInputExtension);
  const bool stays = connection.call([](Display* opened) {
    int opcode = 0, firstEvent = 0, firstError = 0, major = 2, minor = 0;
    if (!XQueryExtension(opened, "XInputExtension", &opcode, &firstEvent, &firstError)) return;
    XIQueryVersion(opened, &major, &minor);
  });
  return stays ? std::move(connection) : XConnection();
}

void XConnection::Closer::operator()(State* state) const {
  const std::unique_ptr<State> owned(state);
  // A lost display was given up where the loss was noticed: closing it would talk to the server.
  if (state->lost) return;
  const std::lock_guard lock(usersOfInputExtension);
  guardXCall([state] { XCloseDisplay(state->display); });
}

}  // namespace quorvel
