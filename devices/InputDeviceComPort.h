// A scanner on a serial port.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "util/Handles.h"
#include "util/PosixThread.h"

namespace quorvel {

// Reads bytes into messages, framed by the last byte of the suffix. Of the line's settings only the
// speed is set; whether a scan arrives whole is decided by the line discipline found on the port.
class InputDeviceComPort : public InputDevice {
 public:
  explicit InputDeviceComPort(const DataCallback& callback) : InputDevice(callback) {}

  // Takes up to one reader step (1 s).
  ~InputDeviceComPort() override;

  // Opens the factory's port and starts the reader thread. False, with the port closed, when it
  // cannot be opened or no thread is to be had. Called once, by the factory.
  bool start(const InputDeviceComPortFactory& factory);

 private:
  bool openPort();
  void setSpeed() const;

  static void* ThreadFunction(void* device);
  void read() noexcept;
  // Reads up to the end of one message, or of what the port holds, and delivers the message. False
  // when the port is readable and yet there is nothing to be read from it, now or later.
  bool readPass();
  void deliverFramed(std::string message) const;
  void deliver(const std::string& message) const;

  FileDescriptor descriptor_;
  PosixThread thread_;
  std::int32_t timeoutCOM_ = 5;  // milliseconds; kept
  std::wstring encoding_;
  std::string suffix_;
  InputDeviceComPortFactory factory_;
  std::string path_;
  std::atomic<bool> running_ = false;
};

// Whether `descriptor` becomes readable within the time; so it does when reading from it fails. A
// time of all ones (the largest 32-bit value) waits without limit. False at once for descriptor 0
// and for what is no open descriptor. Works for descriptors of any number.
bool waitForReadyRead(int descriptor, unsigned long milliseconds);

}  // namespace quorvel
