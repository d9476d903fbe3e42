// The configurations from which devices are made: plain values, filled from the host's parameters.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "devices/InputDevice.h"
#include "devices/NonPrintableKeys.h"

namespace quorvel {

class InputDeviceFactory {
 public:
  virtual ~InputDeviceFactory() = default;

  // A new running device, which keeps copies of the callback and of what it needs of this
  // configuration; null when its connection cannot be made. Called on the host's thread.
  virtual std::unique_ptr<InputDevice> create(const DataCallback& callback) = 0;

 protected:
  InputDeviceFactory() = default;
  InputDeviceFactory(const InputDeviceFactory&) = default;
  InputDeviceFactory& operator=(const InputDeviceFactory&) = default;
};

class InputDeviceComPortFactory : public InputDeviceFactory {
 public:
  std::unique_ptr<InputDevice> create(const DataCallback& callback) override;

  std::uint32_t port = 1;       // a port number of SerialFamilies.h
  std::uint32_t speed = 9600;   // bits per second; an unknown speed opens the port at 9600
  std::uint32_t dataBits = 8;   // kept: the line stays as found
  std::uint32_t stopBit = 0;    // kept: the line stays as found
  std::wstring suffix = L"\r";  // ends a message; empty: a message is what comes in one burst
  std::int32_t timeoutCOM = 5;  // milliseconds; kept
  std::wstring comEncoding;     // for the text of a message, which is ASCII in every encoding
  bool forTestWindow = false;   // the callback is the driver's own: a small stack is enough
};

class InputDeviceKeyboardFactory : public InputDeviceFactory {
 public:
  std::unique_ptr<InputDevice> create(const DataCallback& callback) override;

  std::uint32_t port = 0;     // not read by the device
  std::wstring suffix;        // its last byte ends a message; empty: a carriage return does
  std::wstring prefix;        // kept
  std::int32_t timeout = 75;  // milliseconds; kept
  NonPrintableKeys::KeyID gsSymbolKey = NonPrintableKeys::kNoKey;  // sent for the group separator
  bool listenOnly = false;          // share the keyboard with everyone instead of grabbing it
  bool spareFlag1 = false;          // kept
  std::wstring keyboardDevice;      // the trimmed name of the X input device
  bool spareFlag2 = false;          // kept
  bool ignoreKeyboardState = true;  // kept
  bool forTestWindow = false;       // the callback is the driver's own: a small stack is enough
};

}  // namespace quorvel
