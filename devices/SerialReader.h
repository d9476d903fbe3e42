// Makes messages of what comes in on a serial port.
#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "devices/MessageBytes.h"
#include "devices/SerialPort.h"
#include "util/SignalMask.h"

namespace quorvel {

// What a device shares with its reader thread.
class SerialReader {
 public:
  // The callback will run with the signal mask of the calling thread.
  SerialReader(const InputDeviceComPortFactory& factory, const DataCallback& callback);

  bool open() { return port_.open(); }

  // Reads until stop() is called: passes, each of which delivers one message at most. The body of
  // the reader thread. What the callback throws loses that message only.
  void run();

  // Lets the pass under way be the last one. An endless one is left after a second. Any thread.
  void stop();

 private:
  // Reads up to the end of one message, or of what the port holds, and delivers the message.
  void readPass();
  bool endsMessage(char byte) const { return !suffix_.empty() && byte == suffix_.back(); }
  void deliver(std::size_t cut);
  bool hasToLeave() { return !running_ && isTimeToLeave(); }
  bool isTimeToLeave();

  const InputDeviceComPortFactory factory_;
  const DataCallback callback_;
  const SignalMask callbackMask_;
  const std::string suffix_;
  SerialPort port_;
  MessageBytes message_;
  std::atomic<bool> running_ = true;
  std::optional<std::chrono::steady_clock::time_point> leaveBy_;  // set once it is to stop
};

}  // namespace quorvel
