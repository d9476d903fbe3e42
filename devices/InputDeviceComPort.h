// A scanner on a serial port.
#pragma once

#include <memory>

#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "util/PosixThread.h"

namespace quorvel {

class SerialReader;

// Reads bytes into messages, framed by the last byte of the suffix. Of the line's settings only the
// speed is set; whether a scan arrives whole is decided by the line discipline found on the port. A
// port that is unplugged is read on when it is back.
class InputDeviceComPort : public InputDevice {
 public:
  explicit InputDeviceComPort(const DataCallback& callback) : InputDevice(callback) {}

  // Waits for a message that is being delivered and, while bytes come without end, for up to a
  // second; else it returns at once.
  ~InputDeviceComPort() override;

  // Opens the factory's port and starts the reader thread. False, with the port closed, when it
  // cannot be opened or the thread cannot be created. Called once, by the factory.
  bool start(const InputDeviceComPortFactory& factory);

 private:
  static void* ThreadFunction(void* reader);

  PosixThread thread_;
  // Shared with the thread, which outlives a device that is destroyed by its own callback.
  std::shared_ptr<SerialReader> reader_;
};

}  // namespace quorvel
