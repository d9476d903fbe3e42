// The host's variants, and those that no real host would send.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "host/Variant.h"
#include "tools/common/HostVariants.h"

namespace rig {

using terminal::boolVariant;
using terminal::textVariant;

inline tVariant variantOfType(unsigned type) {
  tVariant variant = terminal::emptyVariant();
  variant.vt = static_cast<std::uint16_t>(type);
  return variant;
}

inline tVariant numberVariant(std::int32_t number, unsigned type = VTYPE_I4) {
  tVariant variant = terminal::numberVariant(number);
  variant.vt = static_cast<std::uint16_t>(type);
  return variant;
}

inline tVariant doubleVariant(double number, unsigned type = VTYPE_R8) {
  tVariant variant = variantOfType(type);
  variant.doubleValue = number;
  return variant;
}

// The text of a string variant that came back, by its own length.
inline std::u16string textIn(const tVariant& variant) {
  if (variant.vt != VTYPE_PWSTR || !variant.wide.text) return u"<no text>";
  return {variant.wide.text, variant.wide.length};
}

// A record full of a byte that no operation writes by itself, to see what is left untouched.
inline tVariant untouchedVariant() {
  tVariant variant;
  std::memset(&variant, 0x5A, sizeof variant);
  return variant;
}

inline bool sameBytes(const tVariant& left, const tVariant& right) {
  return std::memcmp(&left, &right, sizeof left) == 0;
}

// Every type code that a host defines, their neighbours, and codes that no host defines.
inline std::vector<unsigned> typeCodes() {
  std::vector<unsigned> codes;
  for (unsigned code = 0; code < 0x100; ++code) codes.push_back(code);
  for (const unsigned code : {0x100u, 0x102u, 0x2000u, 0x4003u, 0x7FFFu, 0x8000u, 0xFFFFu}) {
    codes.push_back(code);
  }
  return codes;
}

}  // namespace rig
