// What can be told of a serial port without reading from it.
#pragma once

#include <termios.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/host/DeviceHolders.h"

namespace terminal {

enum class PortAccess {
  kOk,
  kMissing,   // nothing stands under the file's name
  kDenied,    // this user may not read it
  kNotALine,  // what stands there is not a serial line, or nothing is connected behind it
};

// What the line discipline does to a scan.
enum class LineKind {
  kFramed,  // hands it over whole when its end byte has come
  kRaw,     // hands bytes over as they come
  kCooked,  // treats it as what a person types at a terminal
};

struct SerialExamination {
  PortAccess access = PortAccess::kMissing;
  // Of a port that may not be read: the group whose members may, empty when there is none, and
  // whether the user belongs to it but has not logged in since.
  std::string readersGroup;
  bool hasToLogIn = false;

  // Of a port that can be opened.
  std::optional<termios> setting;
  bool isExclusive = false;  // another process has it, and lets nobody else open it
  std::vector<Holder> holders;
};

// Opens the port, which may raise its modem lines, and closes it again.
SerialExamination examinePort(const std::string& file);

LineKind kindOf(const termios& setting);
// In bits a second; nothing for a speed without a number.
std::optional<int> speedOf(const termios& setting);
// The number of a standard speed as tcsetattr has it; nothing for any other.
std::optional<speed_t> speedCode(int bitsPerSecond);

// "framed", "raw", "cooked".
const char* nameOf(LineKind kind);

}  // namespace terminal
