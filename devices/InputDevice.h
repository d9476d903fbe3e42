// The model of an input device: a live connection to one scanner or card reader.
#pragma once

#include <functional>
#include <string>

namespace quorvel {

// Receives one complete message as the base64 text of its raw bytes. Runs on the reader thread of
// the device, with the signal mask of the thread that opened it. An exception that leaves it loses
// that message; the device goes on reading. It may destroy the device, or end its thread.
using DataCallback = std::function<void(const std::wstring& data)>;

// A running device. A factory starts it; destroying it stops the reader thread, waits for it, and
// releases the connection. Destroyed in its own callback, it calls back no more, and the reader
// thread releases the connection when the callback returns.
class InputDevice {
 public:
  virtual ~InputDevice() = default;

  InputDevice(const InputDevice&) = delete;
  InputDevice& operator=(const InputDevice&) = delete;

 protected:
  explicit InputDevice(const DataCallback& callback) : callback_(callback) {}

  const DataCallback callback_;
};

}  // namespace quorvel
