// Tells when a device file appears in /dev, or may be opened.
#pragma once

#include <cstdint>
#include <string>

namespace quorvel {

// The interest in one file of /dev. All of them share one inotify instance, which the process keeps
// once it has it: closing one takes the kernel some 20 ms.
//
// Made and used on one thread; different watches may be on different threads.
class DeviceFileWatch {
 public:
  // Watches /dev/`name`. `wake` is an eventfd of the caller's that is signalled when the thread of
  // another watch has read something that happened to this file.
  DeviceFileWatch(std::string name, int wake);
  ~DeviceFileWatch();
  DeviceFileWatch(const DeviceFileWatch&) = delete;
  DeviceFileWatch& operator=(const DeviceFileWatch&) = delete;

  // Readable when something has happened to a file in /dev; -1 where the system does not tell.
  int descriptor() const;

  // What has happened to the file since the last call, without waiting.
  struct Changes {
    bool appeared = false;   // a new file has taken the name
    bool permitted = false;  // its owner, permissions or other attributes have changed
  };
  Changes takeChanges();

 private:
  struct Shared;
  static Shared& shared();

  const std::string name_;
  const int wake_;
  std::uint32_t events_ = 0;  // of inotify; guarded by the mutex of what is shared
};

}  // namespace quorvel
