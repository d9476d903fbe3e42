#include "tools/host/DriverSettings.h"

#include "tools/common/HostText.h"

namespace terminal {

std::string DriverSettings::endByte() const {
  if (suffix < 0) return {};
  // A message ends with the last byte of the suffix.
  const std::string bytes = toUtf8(std::u16string(1, static_cast<char16_t>(suffix)));
  return bytes.empty() ? std::string() : bytes.substr(bytes.size() - 1);
}

DriverSettings settingsFrom(const DeviceOptions& device) {
  DriverSettings settings;
  settings.suffix = device.number("Suffix", settings.suffix);
  settings.outputDataType = device.number("OutputDataType", settings.outputDataType);
  settings.speed = device.number("Speed", settings.speed);
  settings.gsSymbolKey = device.number("GSSymbolKey", settings.gsSymbolKey);
  return settings;
}

}  // namespace terminal
