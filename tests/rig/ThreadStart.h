// A process in which no thread can be started.
#pragma once

namespace rig {

// While it lives, starting a thread fails with EAGAIN. Works only in programs that link this file's
// source, which replaces pthread_create.
class NoThreads {
 public:
  NoThreads();
  ~NoThreads();
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;
};

}  // namespace rig
