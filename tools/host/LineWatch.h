// Listens at a serial port from outside the component.
#pragma once

#include <termios.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tools/common/EndSignals.h"
#include "util/Handles.h"

namespace terminal {

// What came from a port until it fell silent.
struct LineSample {
  // Each is what stood in the line when it was emptied: a scan that comes in several has come in
  // pieces.
  std::vector<std::string> bursts;
  bool isUnplugged = false;
  bool isInterrupted = false;  // by a signal

  std::string bytes() const;
};

// A port whose bytes are seen as they come, whatever the line does to them. The line's setting is
// put back with this object.
class LineWatch {
 public:
  // Discards what waits in the port, as the component does. Throws std::system_error.
  LineWatch(const std::string& file, int bitsPerSecond);
  ~LineWatch();
  LineWatch(const LineWatch&) = delete;
  LineWatch& operator=(const LineWatch&) = delete;

  // The setting that the line had.
  const termios& found() const { return found_; }

  // Waits for the first bytes, at most this long, and then for the last of them. `waiting` is
  // called about once a second with the time that is left until then.
  LineSample take(std::chrono::milliseconds patience, const EndSignals& end,
                  const std::function<void(std::chrono::seconds left)>& waiting);

 private:
  // Empties the line into the sample; whether anything was there.
  bool takeBurst(LineSample& sample) const;

  quorvel::FileDescriptor port_;
  termios found_;
};

}  // namespace terminal
