// A component, with simulated scanners at serial ports.
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

  // A scanner's line at this port's device file.
  terminal::SerialLine& plugIn(std::int32_t port,
                               terminal::LineSetting setting = terminal::LineSetting::kFramed);

  // Like openPort; the destructor closes the device if it is still open.
  std::u16string open(std::int32_t port);
  // Close one device, or all that are open.
  bool close(std::u16string id);
  void closeAll();

  std::deque<terminal::SerialLine> lines;
  std::vector<std::u16string> ids;  // of the open devices
};

}  // namespace rig
