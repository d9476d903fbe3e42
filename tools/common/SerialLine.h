// A serial line with a scanner at its far end: a pseudo terminal whose slave stands for the port.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "util/Handles.h"

namespace terminal {

// The line discipline decides what a reader of the port sees of a scan.
enum class LineSetting {
  // The kernel hands over a scan only when its last byte, a carriage return, has come, at any
  // speed; every other byte but a line feed passes through.
  kFramed,
  // Bytes come as they come.
  kRaw,
  // A fresh terminal: carriage return becomes line feed, and control characters have their effects.
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

  // Lets a symbolic link at `path` stand for the port. Nothing may be there before.
  void link(const std::string& path);

  // Waits until a reader has set up the port: it discards what came before, and to send earlier
  // would be to send in vain. False when a byte can be read from `cancel` first (-1: never) or the
  // time is over (negative: no limit).
  bool waitForReader(int cancel = -1,
                     std::chrono::milliseconds patience = std::chrono::milliseconds(-1));

  // Sends bytes in as few writes as the line takes, or byte by byte with a pause after each, as a
  // slow line does. Waits while the reader is behind. False when a byte can be read from `cancel`
  // first (-1: never): what was not sent by then is lost.
  bool send(std::string_view bytes, int cancel = -1);
  bool sendSlowly(std::string_view bytes, std::chrono::microseconds pause, int cancel = -1);

 private:
  quorvel::FileDescriptor master_;
  std::string port_;
  std::string link_;
};

}  // namespace terminal
