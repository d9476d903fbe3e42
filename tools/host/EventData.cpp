#include "tools/host/EventData.h"

namespace terminal {

std::string toBase64(const std::string& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    unsigned group = 0;
    for (std::size_t i = at; i < at + 3; ++i) {
      group = group << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
    }
    for (int digit = 0; digit < 4; ++digit) text += kDigits[group >> (18 - 6 * digit) & 63];
  }
  const std::size_t missing = (3 - bytes.size() % 3) % 3;
  text.replace(text.size() - missing, missing, missing, '=');
  return text;
}

std::string eventData(const std::string& message, const DriverSettings& settings) {
  return settings.isBase64() ? toBase64(message) : message;
}

}  // namespace terminal
