// The input devices of the X server.
#pragma once

#include <string>
#include <vector>

namespace quorvel {

class XConnection;

struct XInputDevice {
  int id;
  std::string rawName;  // as the X server has it, in whatever encoding
  std::string name;     // as settingsDeviceName makes it: how settings and users know the device
  bool isKeyboard;      // its type is exactly "KEYBOARD"
};

// All input devices of the X server, in the server's order. Two round trips, however many devices.
// Empty when the connection is empty or lost.
std::vector<XInputDevice> listXInputDevices(const XConnection& connection);

// Whether the X server has a device of this id and it is switched on. False when the connection is
// lost.
bool isXInputDeviceEnabled(const XConnection& connection, int id);

}  // namespace quorvel
