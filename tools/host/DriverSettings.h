// The parameters of the component that decide what becomes of a scan.
#pragma once

#include <cstdint>
#include <string>

#include "tools/host/DeviceOptions.h"

namespace terminal {

struct DriverSettings {
  std::int32_t suffix = 13;  // a character's code; -1 is none
  std::int32_t outputDataType = 0;
  std::int32_t speed = 9600;
  std::int32_t gsSymbolKey = 7;

  // Whether events carry base64, which any bytes survive.
  bool isBase64() const { return outputDataType == 2; }
  // The byte that ends a message; empty without a suffix.
  std::string endByte() const;
};

// As --set gives them, otherwise the component's defaults. Throws UsageError.
DriverSettings settingsFrom(const DeviceOptions& device);

}  // namespace terminal
