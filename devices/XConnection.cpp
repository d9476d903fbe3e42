#include "devices/XConnection.h"

namespace quorvel {

XConnection XConnection::open() {
  installXErrorHandlers();
  auto state = std::make_unique<State>();
  Display*& display = state->display;
  XConnection connection;
  if (!guardXCall([&] { display = XOpenDisplay(nullptr); }) || !display) return connection;
  connection.state_.reset(state.release());
  leaveGuardedCallsOnLoss(connection.get());
  return connection;
}

void XConnection::Closer::operator()(State* state) const {
  const std::unique_ptr<State> owned(state);
  // A lost display was given up where the loss was noticed: closing it would talk to the server.
  if (!state->lost) guardXCall([state] { XCloseDisplay(state->display); });
}

}  // namespace quorvel
