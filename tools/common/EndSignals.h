// Ctrl-C and the other requests to end, as something to wait for.
#pragma once

#include <chrono>

#include "util/Handles.h"

namespace terminal {

// While it lives, SIGINT, SIGTERM and SIGHUP do not end the program; they make the descriptor
// readable, for good. Must be created on the main thread, before any other thread is started.
class EndSignals {
 public:
  // Throws std::system_error.
  EndSignals();

  int descriptor() const { return descriptor_.get(); }

  // Waits until such a signal comes.
  void wait() const;
  // Waits for at most `time`, which may be up to an hour. True when such a signal has come.
  bool wait(std::chrono::microseconds time) const;

 private:
  quorvel::FileDescriptor descriptor_;
};

}  // namespace terminal
