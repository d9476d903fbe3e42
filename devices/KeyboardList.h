// The input devices of the X server.
#pragma once

#include <cstddef>
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

// How many master keyboards the X server has: one, unless somebody has added more. 0 when the
// connection is lost.
std::size_t countMasterKeyboards(const XConnection& connection);

// Asks the X server to tell this connection, by XI_HierarchyChanged events, when input devices are
// added, removed, enabled or disabled.
void selectHierarchyEvents(const XConnection& connection);

}  // namespace quorvel
