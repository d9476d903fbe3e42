// How a scan ends that does not contain the expected suffix.
#pragma once

#include <optional>
#include <string>

namespace terminal {

// The code of the control character that is last, if one is.
inline std::optional<unsigned char> controlAtEnd(const std::string& bytes) {
  if (bytes.empty()) return {};
  const auto last = static_cast<unsigned char>(bytes.back());
  return last < 0x20 || last == 0x7F ? std::optional(last) : std::nullopt;
}

}  // namespace terminal
