// The first USB serial port, as a parameter and as the file system know it.
#pragma once

#include <cstdint>
#include <string>

#include "tools/common/SerialLine.h"

namespace rig {

inline constexpr std::int32_t kUsb1 = 129;
inline const std::string kUsb1Path = "/dev/ttyUSB0";

// A scanner's line there.
struct UsbLine : terminal::SerialLine {
  explicit UsbLine(terminal::LineSetting setting) : SerialLine(setting) { link(kUsb1Path); }
};

}  // namespace rig
