// The thread of a device's reader.
#pragma once

#include <pthread.h>

#include <cerrno>

namespace quorvel {

class PosixThread {
 public:
  PosixThread() = default;
  PosixThread(const PosixThread&) = delete;
  PosixThread& operator=(const PosixThread&) = delete;

  // Runs `function(argument)` on a new thread in which every signal is blocked: the host's signals
  // are for the host's threads. False when there is no thread to be had. Called once.
  bool start(void* (*function)(void*), void* argument);

  // Waits for the thread to end; nothing to wait for when none was started.
  void join();

 private:
  int creationResult_ = ENOMEM;  // of pthread_create; none was created until it is 0
  pthread_t handle_{};
};

}  // namespace quorvel
