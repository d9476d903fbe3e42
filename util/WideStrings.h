// Between the host's 16-bit strings and the 32-bit wchar_t strings inside.
//
// Neither direction knows surrogate pairs: a character above U+FFFF keeps its low 16 bits, and each
// 16-bit unit becomes one character.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/Variant.h"

namespace quorvel {

// Units before the first zero unit. `text` is not null.
std::uint32_t getLenShortWcharStr(const WCHAR_T* text);

// Copies exactly `count` characters, zeros among them, to *destination and returns `count`. A count
// of 0 stands for the length of `source` and its terminator. A null *destination gets a new array
// of `count` units, which the caller frees with delete[].
std::uint32_t convToShortWchar(WCHAR_T** destination, const wchar_t* source,
                               std::uint32_t count = 0);

// Copies units up to the first zero unit to *destination, zero-fills what is left of `count`, and
// returns `count`. The first unit is taken even when it is zero. A count of 0 stands for the length
// of `source` and its terminator. A null *destination gets a new array of `count` characters, which
// the caller frees with delete[].
std::uint32_t convFromShortWchar(wchar_t** destination, const WCHAR_T* source,
                                 std::uint32_t count = 0);

// A string of exactly `length` characters; what follows a zero unit in that range is zeros. A
// length of 0 means "up to the terminator". A null source gives the empty string.
std::wstring convFromShortWchar(const WCHAR_T* source, std::uint32_t length = 0);

// One text in both widths. Made from a null text it holds two nulls.
class WcharWrapper {
 public:
  explicit WcharWrapper(const wchar_t* text);
  explicit WcharWrapper(const WCHAR_T* text);

  // Zero-terminated, owned by the wrapper.
  WCHAR_T* shortText() const { return short_.get(); }
  wchar_t* wideText() const { return wide_.get(); }

  static std::uint32_t getStrLen(const WCHAR_T* text) { return getLenShortWcharStr(text); }

 private:
  std::unique_ptr<WCHAR_T[]> short_;
  std::unique_ptr<wchar_t[]> wide_;
};

}  // namespace quorvel
