// The speeds of serial lines: what the settings offer is what the reader sets.
#pragma once

#include <termios.h>

#include <array>
#include <cstdint>

namespace quorvel {

struct LineSpeed {
  std::uint32_t bitsPerSecond;
  speed_t constant;  // for termios
};

inline constexpr std::array<LineSpeed, 11> kLineSpeeds = {{{110, B110},
                                                           {300, B300},
                                                           {600, B600},
                                                           {1200, B1200},
                                                           {2400, B2400},
                                                           {4800, B4800},
                                                           {9600, B9600},
                                                           {19200, B19200},
                                                           {38400, B38400},
                                                           {57600, B57600},
                                                           {115200, B115200}}};

}  // namespace quorvel
