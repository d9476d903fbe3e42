// A serial line with a scanner at its far end: a pseudo terminal whose slave acts as the port.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "util/Handles.h"

namespace terminal {

// The line discipline decides what a reader of the port sees of a scan.
enum class LineSetting {
  // The kernel holds a scan back until its last byte, a carriage return, has come, however slowly.
  // Every other byte except a line feed passes unchanged.
  kFramed,
  // Each byte is readable at once.
  kRaw,
  // As a new terminal: carriage return becomes line feed, and control characters take effect.
  kCooked,
};

// Used on one thread. Every failure is a std::system_error.
class SerialLine {
 public:
  explicit SerialLine(LineSetting setting);
  // Unplugs: the port hangs up, and the link is removed.
  ~SerialLine();
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;

  // The slave's own path, /dev/pts/N.
  const std::string& port() const { return port_; }

  // Makes a symbolic link to the port at `path`, where nothing may exist yet.
  void link(const std::string& path);

  // Waits until a reader has set up the port, which discards everything sent before. False when
  // `cancel` becomes readable first (-1: never) or `patience` is over (negative: no limit).
  bool waitForReader(int cancel = -1,
                     std::chrono::milliseconds patience = std::chrono::milliseconds(-1));

  // Send bytes in as few writes as possible, or one at a time with a pause after each, as a slow
  // line does. Wait while the reader is behind. False when `cancel` becomes readable first (-1:
  // never): what has not been sent by then is lost.
  bool send(std::string_view bytes, int cancel = -1);
  bool sendSlowly(std::string_view bytes, std::chrono::microseconds pause, int cancel = -1);

 private:
  quorvel::FileDescriptor master_;
  std::string port_;
  std::string link_;
};

}  // namespace terminal
