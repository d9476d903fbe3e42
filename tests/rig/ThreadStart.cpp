#include "tests/rig/ThreadStart.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>

#include "tests/rig/ReplacedFunction.h"

namespace {

std::atomic<bool> allowed = true;

}  // namespace

// Overrides the C library's, for libraries too: the dynamic linker searches the program first.
extern "C" __attribute__((visibility("default"))) int pthread_create(
    pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
    void* argument) noexcept {
  static const auto real = rig::replacedFunction<decltype(pthread_create)>("pthread_create");
  return allowed ? real(thread, attributes, function, argument) : EAGAIN;
}

namespace rig {

NoThreads::NoThreads() { allowed = false; }
NoThreads::~NoThreads() { allowed = true; }

}  // namespace rig
