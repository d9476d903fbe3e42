// The three families of serial device files, and the port numbers that stand for them in the
// settings: 0 is the keyboard, then follow the files of each family from its number 0 on.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

struct SerialFamily {
  std::string_view prefix;      // of the file names in /dev, before the number
  std::uint32_t base;           // file number n has the port number base + n + 1
  std::wstring_view caption;    // before the number n + 1 in the settings form
  std::wstring_view shortName;  // before the number n + 1 in the test window

  std::uint32_t firstPort() const { return base + 1; }
};

inline constexpr std::array<SerialFamily, 3> kSerialFamilies = {{
    {"ttyS", 0, L"COM", L"COM"},
    {"ttyACM", 64, L"Virtual COM", L"ACM"},
    {"ttyUSB", 128, L"USB COM", L"USB"},
}};

// The family of a port number from 1 on. The last family has no upper end.
const SerialFamily& serialFamilyOf(std::uint32_t port);

// "/dev/ttyUSB0" for 129.
std::string devicePathOf(std::uint32_t port);

// "USB1" for 129.
std::wstring shortNameOf(std::uint32_t port);

// The paths below /dev whose file names begin with `prefix`, in no order, as find(1) prints them,
// one a line. Empty when it cannot be run.
std::vector<std::string> findDeviceFiles(std::string_view prefix);

// The number that follows `prefix` in the name of a file in /dev: 3 for "/dev/ttyS3". 0 for any
// other path, for a name without a number, and for a number outside 32 bits.
std::int32_t deviceFileNumber(const std::string& path, std::string_view prefix);

}  // namespace quorvel
