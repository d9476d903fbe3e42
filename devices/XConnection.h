// A connection of the driver's own to the X server.
#pragma once

#include <X11/Xlib.h>

#include <atomic>
#include <memory>
#include <utility>

#include "devices/XErrors.h"

namespace quorvel {

// A connection to the default X display. Protocol errors on it are ignored. When the server goes
// away the connection is lost for good, and calls on it fail without effect. May be moved and used
// by one thread after another, but not by two at a time.
class XConnection {
 public:
  // An empty connection.
  XConnection() = default;

  // Connects to the display that the environment names, as a client of version 2.0 of the input
  // extension, if the server has it. Empty when there is no display. Any thread.
  static XConnection open();

  explicit operator bool() const { return state_ != nullptr; }

  // Whether the server has gone away, as far as a call has noticed; true when empty. Any thread.
  bool lost() const { return !state_ || state_->lost; }

  // The display, owned by this connection; null when empty. Only for what does not talk to the
  // server; everything else goes through `call`.
  Display* get() const { return state_ ? state_->display : nullptr; }

  // Says what the thread that uses the connection from now on does with SIGPIPE. A thread that
  // blocks it saves two system calls with each call.
  void setSigpipe(Sigpipe sigpipe) const {
    if (state_) state_->sigpipe = sigpipe;
  }

  // Runs `function(display)`. False when the connection is empty or lost, or when it is lost
  // meanwhile: the function is then left by a longjmp and must hold no object with a destructor.
  template <typename Function>
  bool call(Function&& function) const {
    if (lost()) return false;
    if (guardXCall([&] { function(state_->display); }, state_->sigpipe)) return true;
    state_->lost = true;
    return false;
  }

 private:
  struct State {
    Display* display = nullptr;
    std::atomic<bool> lost = false;
    Sigpipe sigpipe = Sigpipe::kUnblocked;
  };
  struct Closer {
    void operator()(State* state) const;
  };

  std::unique_ptr<State, Closer> state_;
};

}  // namespace quorvel
