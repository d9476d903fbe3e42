#include "devices/NonPrintableKeys.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quorvel::NonPrintableKeys {
namespace {

struct Key {
  std::string_view shortName;
  std::wstring_view fullName;
  unsigned long keysym;
};

// In the order of the identifiers, from kNoKey on.
constexpr std::array<Key, kLastKey - kNoKey + 1> kKeys = {{
    {"", L"&lt;NONE&gt;", 0},
    {"'F1'", L"F1", 0xFFBE},
    {"'F2'", L"F2", 0xFFBF},
    {"'F3'", L"F3", 0xFFC0},
    {"'F4'", L"F4", 0xFFC1},
    {"'F5'", L"F5", 0xFFC2},
    {"'F6'", L"F6", 0xFFC3},
    {"'F7'", L"F7", 0xFFC4},
    {"'F8'", L"F8", 0xFFC5},
    {"'F9'", L"F9", 0xFFC6},
    {"'F10'", L"F10", 0xFFC7},
    {"'F11'", L"F11", 0xFFC8},
    {"'F12'", L"F12", 0xFFC9},
    {"'INSERT'", L"INSERT", 0xFF63},
    {"'DELETE'", L"DELETE", 0xFFFF},
    {"'HOME'", L"HOME", 0xFF50},
    {"'END'", L"END", 0xFF57},
    {"'PgUp'", L"PgUp", 0xFF55},
    {"'PgDn'", L"PgDn", 0xFF56},
    {"'CAPSLOCK'", L"CAPSLOCK", 0xFFE5},
    {"'RIGHT_ALT'", L"RIGHT_ALT", 0xFFEA},
    {"'CR(Numpad)'", L"NUMPAD_ENTER", 0xFF8D},
}};

// What a number outside the table stands for.
constexpr Key kUnknownKey = {"", L"", 0};

constexpr const Key& keyOf(KeyID key) {
  return key >= kNoKey && key <= kLastKey ? kKeys[static_cast<std::size_t>(key - kNoKey)]
                                          : kUnknownKey;
}

static_assert(keyOf(kF8).keysym == 0xFFC5);
static_assert(keyOf(kLastKey).keysym == 0xFF8D);

}  // namespace

std::string getKeyShortName(unsigned long keysym) {
  const auto key = std::find_if(kKeys.begin(), kKeys.end(), [keysym](const Key& candidate) {
    return candidate.keysym == keysym;
  });
  return std::string(key == kKeys.end() ? kUnknownKey.shortName : key->shortName);
}

std::wstring getKeyFullName(KeyID key) { return std::wstring(keyOf(key).fullName); }

unsigned long getKeyLinuxData(KeyID key) { return keyOf(key).keysym; }

}  // namespace quorvel::NonPrintableKeys
