#include "util/PosixThread.h"

#include <csignal>

namespace quorvel {

bool PosixThread::start(void* (*function)(void*), void* argument) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  creationResult_ = pthread_create(&handle_, nullptr, function, argument);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return creationResult_ == 0;
}

void PosixThread::join() {
  if (creationResult_ != 0) return;
  pthread_join(handle_, nullptr);
  creationResult_ = ENOMEM;
}

}  // namespace quorvel
