// The signals that a thread blocks.
#pragma once

#include <pthread.h>

#include <csignal>

namespace quorvel {

// A signal mask that blocks no fault: the C library, a crash reporter or a language runtime in the
// host handles faults on the very thread that makes them.
class SignalMask {
 public:
  // Of the calling thread.
  static SignalMask current();
  // Blocks every signal but the faults.
  static SignalMask asynchronous();

  const sigset_t& get() const { return mask_; }

 private:
  explicit SignalMask(const sigset_t& mask);

  sigset_t mask_;
};

// Gives the calling thread a mask and, at the end of the scope, the mask it had before.
class ScopedSignalMask {
 public:
  explicit ScopedSignalMask(const SignalMask& mask) {
    pthread_sigmask(SIG_SETMASK, &mask.get(), &before_);
  }
  ~ScopedSignalMask() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  ScopedSignalMask(const ScopedSignalMask&) = delete;
  ScopedSignalMask& operator=(const ScopedSignalMask&) = delete;

 private:
  sigset_t before_;
};

}  // namespace quorvel
