// A serial port, which may go and come back.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "devices/DeviceFileWatch.h"
#include "devices/ReadyWait.h"
#include "util/Handles.h"

namespace quorvel {

// A port that is read by one thread. When the port turns out to be gone (an unplugged adapter), its
// descriptor is closed at once, because the kernel keeps the device's name taken until then; and
// when a device stands at the same path again, the port opens it as it did the first one.
class SerialPort {
 public:
  // Whose scans the port brings. A host that opens a lost port anew takes it over from the devices
  // that waited for it; the test window only listens along and takes part in no such change.
  enum class Owner { kHost, kTestWindow };

  // `path` is in /dev. An unknown speed is 9600 bits per second.
  SerialPort(std::string path, std::uint32_t bitsPerSecond, Owner owner);
  ~SerialPort();
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;

  // Opens the port for the first time, sets its speed and discards what waits in it; every other
  // line setting stays as found. False when it cannot be opened. Called once, on the host's thread.
  bool open();

  // The rest is for the reading thread, but for wake().

  // Waits for data for up to a second. False without data: then the time is over, wake() was
  // called, or the port is gone; while it is, waiting opens it again as soon as it is back.
  bool waitForData();

  enum class Read { kByte, kNothingYet, kGone };
  // Takes the next byte without waiting.
  Read read(char& byte);

  // Ends the wait under way, or the next one. Any thread.
  void wake();

 private:
  using Clock = std::chrono::steady_clock;

  // What tells whether a device file is still the one that was opened.
  struct Node {
    dev_t device;
    ino_t number;
    bool operator==(const Node&) const = default;
  };
  std::optional<Node> nodeAtPath() const;

  bool openFile();
  void setSpeed() const;
  void takeOver();
  void leaveIfLost(int successor);
  void lose();
  void waitForReturn();
  bool comeBack();
  void clearWake() const;

  const std::string path_;
  const std::uint32_t bitsPerSecond_;
  const Owner owner_;
  FileDescriptor wake_;  // readable to end a wait
  bool known_ = false;   // to the other ports of this process

  // Guards what follows against takeOver() of another port; the reading thread, which alone changes
  // the descriptor, reads it without.
  std::mutex mutex_;
  FileDescriptor descriptor_;
  bool wasLost_ = false;
  bool left_ = false;  // to another port at the same path, for good

  // Of the reading thread.
  std::optional<ReadyWait> wait_;         // while the port is open
  std::optional<DeviceFileWatch> watch_;  // while it is gone
  std::optional<Node> node_;              // that was opened
  bool everRead_ = false;
  bool refused_ = false;  // at the last try to open it
  Clock::time_point openedAt_;
  Clock::time_point nextTry_;
  Clock::duration pause_;  // between two openings of a port that brings nothing
};

}  // namespace quorvel
