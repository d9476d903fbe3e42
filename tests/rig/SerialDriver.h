// A component with serial ports of the test's own plugged in.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "tests/rig/Driver.h"
#include "tools/common/SerialLine.h"

namespace rig {

// The device file of a port number.
std::string portPath(std::int32_t port);

struct SerialDriver : Driver {
  using Driver::Driver;
  ~SerialDriver();

  // A line with a scanner at its end, at the place of the port.
  terminal::SerialLine& plugIn(std::int32_t port,
                               terminal::LineSetting setting = terminal::LineSetting::kFramed);

  // Opens the port like openPort; the device is closed with this driver at the latest.
  std::u16string open(std::int32_t port);
  // Closes a device, and all that are open.
  bool close(std::u16string id);
  void closeAll();

  std::deque<terminal::SerialLine> lines;
  std::vector<std::u16string> ids;  // of the open devices
};

}  // namespace rig
