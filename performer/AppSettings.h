// The settings that every component of the process shares.
#pragma once

#include <string>

#include "host/Variant.h"
#include "util/Language.h"

namespace quorvel {

// May be called on any thread; one mutex guards every operation.
class AppSettings {
 public:
  // The number of a Language, initially Russian. Other values are ignored.
  static unsigned locale();
  static void setLocale(unsigned locale);

  // The same as a Language.
  static Language language();
  static void setLanguage(Language language);

  // A code of OutputData.h, initially kText. Other values are ignored.
  static unsigned ioDataType();
  static void setIODataType(unsigned type);

  // 0 to 32, initially kBarcodeScanner. Other values are ignored.
  static unsigned deviceType();
  static void setDeviceType(unsigned type);

  // The variant stored under `key`, or `defaultValue`. Variants are copied bit by bit: the text of
  // a string variant is not copied, and whoever owns it keeps it alive.
  static tVariant value(const std::wstring& key, const tVariant& defaultValue);
  static void setValue(const std::wstring& key, const tVariant& value);
};

}  // namespace quorvel
