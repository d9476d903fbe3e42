// Whether a device that this process's component has open is still there, as seen from outside the
// component.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace terminal {

class DevicePresence {
 public:
  virtual ~DevicePresence() = default;

  // What tells the device from another one that comes in its place; empty while it is gone. Cheap
  // enough to be asked several times a second.
  virtual std::string identity() = 0;
};

// The port is there while its file leads to a line that this process has open and that has not hung
// up.
std::unique_ptr<DevicePresence> presenceOfPort(std::int32_t port);

// The keyboard of this name in the form, while the X server has it and it is switched on. Without a
// display it is never there. Made before the component opens the keyboard.
std::unique_ptr<DevicePresence> presenceOfKeyboard(const std::string& formName);

}  // namespace terminal
