// A process in which no thread can be started.
#pragma once

namespace rig {

// While it lives, starting a thread fails as for want of memory. Works in programs that this file's
// source is linked into.
class NoThreads {
 public:
  NoThreads();
  ~NoThreads();
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;
};

}  // namespace rig
