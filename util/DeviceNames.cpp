#include "util/DeviceNames.h"

#include <algorithm>
#include <string_view>

namespace quorvel {
namespace {

constexpr std::string_view kXMLMarkup = "&<>\"'";

bool isControl(char byte) { return byte >= 0 && byte < ' '; }

}  // namespace

bool NotASCII(char byte) { return (byte & 0x80) != 0; }

bool TrimXMLIllegalChars(std::string& text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char byte) { return NotASCII(byte) || kXMLMarkup.find(byte) != kXMLMarkup.npos; }, ' ');
  return true;
}

std::string settingsDeviceName(std::string name) {
  TrimXMLIllegalChars(name);
  std::replace_if(name.begin(), name.end(), isControl, ' ');
  return name;
}

}  // namespace quorvel
