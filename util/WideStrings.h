// Conversions between the host's 16-bit strings and the driver's 32-bit wchar_t strings.
//
// They ignore surrogate pairs: a character above U+FFFF keeps its low 16 bits, and each 16-bit unit
// becomes one character.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/Variant.h"

namespace quorvel {

// The number of units before the first zero unit. `text` must not be null.
std::uint32_t getLenShortWcharStr(const WCHAR_T* text);

// Copies exactly `count` characters to *destination, without stopping at a zero, and returns
// `count`. A count of 0 means the length of `source` plus its terminator. If *destination is null,
// allocates an array of `count` units, which the caller frees with delete[].
std::uint32_t convToShortWchar(WCHAR_T** destination, const wchar_t* source,
                               std::uint32_t count = 0);

// Copies units to *destination up to the first zero unit, but at least one, fills the rest of
// `count` with zeros, and returns `count`. A count of 0 means the length of `source` plus its
// terminator. If *destination is null, allocates an array of `count` characters, which the caller
// frees with delete[].
std::uint32_t convFromShortWchar(wchar_t** destination, const WCHAR_T* source,
                                 std::uint32_t count = 0);

// A string of exactly `length` characters; those after a zero unit are zeros. A length of 0 means
// up to the terminator. Empty for a null source.
std::wstring convFromShortWchar(const WCHAR_T* source, std::uint32_t length = 0);

// Owns one text in both widths; both are null when made from a null text.
class WcharWrapper {
 public:
  explicit WcharWrapper(const wchar_t* text);
  explicit WcharWrapper(const WCHAR_T* text);

  // Zero-terminated.
  WCHAR_T* shortText() const { return short_.get(); }
  wchar_t* wideText() const { return wide_.get(); }

  static std::uint32_t getStrLen(const WCHAR_T* text) { return getLenShortWcharStr(text); }

 private:
  std::unique_ptr<WCHAR_T[]> short_;
  std::unique_ptr<wchar_t[]> wide_;
};

}  // namespace quorvel
