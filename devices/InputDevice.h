// The model of an input device: a live connection to one scanner or card reader.
#pragma once

#include <functional>
#include <string>

namespace quorvel {

// Receives one complete message as the base64 text of its raw bytes. Runs on the reader thread of
// the device. What it throws is
// caught there and loses that message; the device goes on reading.
using DataCallback = std::function<void(const std::wstring& data)>;

// A running device. A factory starts it; destroying it, on any thread but its own reader's, stops
// the reader thread, waits for it, and releases the connection.
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
