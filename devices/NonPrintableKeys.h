// The keys that produce no text, which scanners send for characters that cannot be typed.
#pragma once

#include <cstdint>
#include <string>

namespace quorvel::NonPrintableKeys {

// Stands in the settings as a number: -1 for no key, 0 to 20 for the keys of the table.
enum KeyID : std::int32_t { kNoKey = -1, kF8 = 7, kLastKey = 20 };

struct KeyName {
  std::string shortName;  // as the test window shows the key, with its quotes
  std::wstring fullName;  // as the settings form offers it, escaped for XML
};

// The short name of the key with this X keysym, empty when there is none.
std::string getKeyShortName(unsigned long keysym);

// The full name of a key, empty for a number outside the table.
std::wstring getKeyFullName(KeyID key);

// The X keysym of a key; 0 for kNoKey and for a number outside the table.
unsigned long getKeyLinuxData(KeyID key);

}  // namespace quorvel::NonPrintableKeys
