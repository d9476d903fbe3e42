// The settings that every component of the process shares.
#pragma once

#include <string>

#include "host/Variant.h"
#include "util/DataTypes.h"

namespace quorvel {

// Locales: the language of the texts.
inline constexpr unsigned kRussian = 0;
inline constexpr unsigned kEnglish = 1;

// Equipment types.
inline constexpr unsigned kBarcodeScanner = 16;
inline constexpr unsigned kMagneticCardReader = 32;

// Every operation may be called on any thread; one mutex guards them all.
class AppSettings {
 public:
  // A locale, kRussian at the start. Other values are ignored.
  static unsigned locale();
  static void setLocale(unsigned locale);

  // A data type of DataTypes.h, kText at the start. Other values are ignored.
  static unsigned ioDataType();
  static void setIODataType(unsigned type);

  // 0 to 32, kBarcodeScanner at the start. Other values are ignored.
  static unsigned deviceType();
  static void setDeviceType(unsigned type);

  // The variant stored under `key`, or `defaultValue`. Variants are stored as they are: the text of
  // a string stays its owner's, who keeps it alive.
  static tVariant value(const std::wstring& key, const tVariant& defaultValue);
  static void setValue(const std::wstring& key, const tVariant& value);
};

}  // namespace quorvel
