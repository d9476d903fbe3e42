#include "util/DeviceNames.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quorvel {
namespace {

constexpr std::string_view kXMLMarkup = "&<>\"'";

// What TrimXMLIllegalChars makes of each byte.
constexpr std::array<char, 256> kTrimmed = [] {
  std::array<char, 256> trimmed{};
  for (std::size_t byte = 0; byte < trimmed.size(); ++byte) {
    const auto character = static_cast<char>(byte);
    const bool illegal = byte >= 0x80 || kXMLMarkup.find(character) != kXMLMarkup.npos;
    trimmed[byte] = illegal ? ' ' : character;
  }
  return trimmed;
}();

bool isControl(char byte) { return byte >= 0 && byte < ' '; }

}  // namespace

bool NotASCII(char byte) { return (byte & 0x80) != 0; }

bool TrimXMLIllegalChars(std::string& text) {
  for (char& byte : text) byte = kTrimmed[static_cast<std::uint8_t>(byte)];
  return true;
}

std::string settingsDeviceName(std::string name) {
  TrimXMLIllegalChars(name);
  std::replace_if(name.begin(), name.end(), isControl, ' ');
  return name;
}

}  // namespace quorvel
