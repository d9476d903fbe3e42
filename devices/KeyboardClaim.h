// A keyboard of the X server, taken from everybody else or listened to.
#pragma once

#include <string>

#include "devices/InputDeviceFactories.h"
#include "devices/XConnection.h"

namespace quorvel {

// Used on one thread after another.
class KeyboardClaim {
 public:
  // `connection` is not empty and outlives this object. It will get hierarchy events.
  KeyboardClaim(const XConnection& connection, const InputDeviceKeyboardFactory& factory);

  // Grabs the factory's keyboard, or starts listening to it. False when there is no device of that
  // name, when another client has grabbed it, or when the server has no input extension.
  bool take();

  // Gives the keyboard back.
  void release();

  // The major opcode of the input extension's events; 0 without the extension.
  int inputExtension() const { return inputExtension_; }

 private:
  bool subscribe() const;

  const XConnection& connection_;
  const std::string name_;
  const bool listenOnly_;
  int inputExtension_ = 0;
  int deviceId_ = -1;  // -1 without a device
};

}  // namespace quorvel
