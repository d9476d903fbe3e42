// Ctrl-C and its like, as something to wait for.
#pragma once

#include <chrono>

#include "util/Handles.h"

namespace terminal {

// While it lives, the signals that ask a program to end do not end it; the descriptor becomes
// readable instead, and stays so. Made on the main thread before any other thread.
class EndSignals {
 public:
  // Throws std::system_error.
  EndSignals();

  int descriptor() const { return descriptor_.get(); }

  // Waits until such a signal comes.
  void wait() const;
  // Rests for the time, at most an hour, or until such a signal comes: true when it has.
  bool wait(std::chrono::microseconds time) const;

 private:
  quorvel::FileDescriptor descriptor_;
};

}  // namespace terminal
