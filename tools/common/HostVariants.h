// Variants as a host hands them to a component.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "host/Variant.h"

namespace terminal {

// Every byte is zero.
inline tVariant emptyVariant() {
  tVariant variant;
  std::memset(&variant, 0, sizeof variant);
  return variant;
}

inline tVariant numberVariant(std::int32_t number) {
  tVariant variant = emptyVariant();
  variant.intValue = number;
  variant.vt = VTYPE_I4;
  return variant;
}

inline tVariant boolVariant(bool value) {
  tVariant variant = emptyVariant();
  variant.boolValue = value;
  variant.vt = VTYPE_BOOL;
  return variant;
}

// String variants refer to the caller's text, which must outlive them. With a `length` (in units)
// the text may be null or of another length.
inline tVariant textVariant(const WCHAR_T* text, std::uint32_t length) {
  tVariant variant = emptyVariant();
  // The contract has no pointers to constants; a component only reads its arguments.
  variant.wide.text = const_cast<WCHAR_T*>(text);
  variant.wide.length = length;
  variant.vt = VTYPE_PWSTR;
  return variant;
}

inline tVariant textVariant(const WCHAR_T* text) {
  return textVariant(text, static_cast<std::uint32_t>(std::char_traits<WCHAR_T>::length(text)));
}

inline tVariant textVariant(const std::u16string& text) {
  return textVariant(text.c_str(), static_cast<std::uint32_t>(text.size()));
}

}  // namespace terminal
