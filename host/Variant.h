// The host's value record and its 16-bit character, with their layout in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

// One UTF-16 code unit. Host strings are zero-terminated arrays of these.
using WCHAR_T = char16_t;

// Type codes of tVariant::vt.
enum VariantType : std::uint16_t {
  VTYPE_EMPTY = 0,
  VTYPE_I2 = 2,
  VTYPE_I4 = 3,
  VTYPE_R4 = 4,
  VTYPE_R8 = 5,
  VTYPE_ERROR = 10,
  VTYPE_BOOL = 11,
  VTYPE_UI1 = 14,
  VTYPE_UI2 = 15,
  VTYPE_UI4 = 16,
  VTYPE_I8 = 17,
  VTYPE_UI8 = 18,
  VTYPE_PWSTR = 22,
};

// A plain record that owns nothing. Each operation that passes a string variant says who frees its
// text.
struct tVariant {
  struct NarrowString {
    char* text;            // zero-terminated
    std::uint32_t length;  // characters, without the terminator
  };
  struct WideString {
    WCHAR_T* text;         // zero-terminated
    std::uint32_t length;  // units, without the terminator
  };

  union {
    std::int8_t i8;
    std::int16_t shortValue;
    std::int32_t intValue;
    std::uint32_t uintValue;
    std::int64_t llValue;
    std::uint64_t ullValue;
    float floatValue;
    double doubleValue;
    bool boolValue;
    std::tm tmValue;
    NarrowString narrow;
    WideString wide;
  };
  std::uint32_t elementCount;
  std::uint16_t vt;  // a VariantType, or any other number that a host makes up
};

static_assert(sizeof(bool) == 1);
static_assert(sizeof(WCHAR_T) == 2);
static_assert(offsetof(tVariant, intValue) == 0);
static_assert(offsetof(tVariant, boolValue) == 0);
static_assert(offsetof(tVariant, doubleValue) == 0);
static_assert(offsetof(tVariant, tmValue) == 0);
static_assert(offsetof(tVariant, narrow.text) == 0);
static_assert(offsetof(tVariant, wide.text) == 0);
static_assert(offsetof(tVariant, narrow.length) == sizeof(void*));
static_assert(offsetof(tVariant, wide.length) == sizeof(void*));
static_assert(sizeof(std::tm) == (sizeof(void*) == 4 ? 44 : 56));
static_assert(offsetof(tVariant, elementCount) == (sizeof(void*) == 4 ? 44 : 56));
static_assert(offsetof(tVariant, vt) == (sizeof(void*) == 4 ? 48 : 60));
static_assert(sizeof(tVariant) == (sizeof(void*) == 4 ? 52 : 64));
