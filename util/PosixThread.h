// A thread of the driver's own.
#pragma once

#include <cxxabi.h>
#include <pthread.h>

#include <cerrno>
#include <cstddef>

namespace quorvel {

// Stack of a thread on which nothing but the driver's own code runs, in bytes. A host's callback
// may need as much as the host's own threads have.
inline constexpr std::size_t kSmallStack = std::size_t{256} * 1024;

class PosixThread {
 public:
  PosixThread() = default;
  PosixThread(const PosixThread&) = delete;
  PosixThread& operator=(const PosixThread&) = delete;

  // Runs `function(argument)` on a new thread with `stackBytes` of stack (0: the default size). The
  // thread blocks every signal but the faults: asynchronous signals are for the host's threads.
  // False when the thread cannot be created. Called once.
  bool start(void* (*function)(void*), void* argument, std::size_t stackBytes = 0);

  // Waits for the thread to end. On the thread itself, lets it go on alone instead. Returns at once
  // when no thread was started, or it was joined before.
  void join();

 private:
  int creationResult_ = ENOMEM;  // of pthread_create; none was created until it is 0
  pthread_t handle_{};
};

// Runs `operation` and drops what it throws; true when it threw nothing. Lets pass the unwinding of
// a thread that is being ended (pthread_exit): stopping it would abort the process.
// That unwinding carries no object, which the sanitizer would report as a null reference.
template <typename Operation>
__attribute__((no_sanitize("undefined"))) bool dropExceptions(const Operation& operation) {
  try {
    operation();
    return true;
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (...) {
    return false;
  }
}

}  // namespace quorvel
