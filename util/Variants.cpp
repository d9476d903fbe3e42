#include "util/Variants.h"

#include <cstring>
#include <cwchar>
#include <limits>

namespace quorvel {
namespace {

// Truncates toward zero. A number that does not fit gives the smallest integer, as the processor's
// conversion does; a C++ conversion would be undefined.
template <typename Integer>
Integer truncated(double number) {
  constexpr double kLow = static_cast<double>(std::numeric_limits<Integer>::min());
  if (number > kLow - 1 && number < -kLow) return static_cast<Integer>(number);
  return std::numeric_limits<Integer>::min();
}

}  // namespace

tVariant emptyVariant() {
  tVariant variant;
  std::memset(&variant, 0, sizeof variant);
  return variant;
}

void setBool(tVariant& variant, bool value) {
  variant.boolValue = value;
  variant.vt = VTYPE_BOOL;
}

void setInt(tVariant& variant, std::int32_t value) {
  variant.intValue = value;
  variant.vt = VTYPE_I4;
}

std::wstring convFromShortWchar(const tVariant& variant) {
  return convFromShortWchar(variant.wide.text, variant.wide.length);
}

std::optional<std::wstring> textOf(const tVariant& variant) {
  if (variant.vt == VTYPE_PWSTR || !variant.wide.text) return convFromShortWchar(variant);
  return std::nullopt;
}

bool convVarToInt(const tVariant& variant, std::int32_t& value) {
  switch (variant.vt) {
    case VTYPE_I2:
    case VTYPE_I4:
    case VTYPE_ERROR:
    case VTYPE_UI1:
      value = variant.intValue;
      return true;
    case VTYPE_R4:
    case VTYPE_R8:
      value = truncated<std::int32_t>(variant.doubleValue);
      return true;
    default:
      return false;
  }
}

bool convVarToDWORD(const tVariant& variant, std::uint32_t& value) {
  switch (variant.vt) {
    case VTYPE_I2:
    case VTYPE_I4:
    case VTYPE_ERROR:
    case VTYPE_UI1:
    case VTYPE_UI2:
    case VTYPE_UI4:
    case VTYPE_I8:
    case VTYPE_UI8:
      value = variant.uintValue;
      return true;
    case VTYPE_R4:
    case VTYPE_R8:
      value = static_cast<std::uint32_t>(truncated<std::int64_t>(variant.doubleValue));
      return true;
    default:
      return false;
  }
}

WCHAR_T* AllocAndConvert(IMemoryManager* memoryManager, const wchar_t* text,
                         std::uint32_t* length) {
  const auto characters = static_cast<std::uint32_t>(std::wcslen(text));
  if (length) *length = characters;
  if (!memoryManager) return nullptr;
  const unsigned long bytes = (characters + 1UL) * sizeof(WCHAR_T);
  void* block = nullptr;
  if (!memoryManager->AllocMemory(&block, bytes) || !block) return nullptr;
  auto* copy = static_cast<WCHAR_T*>(block);
  convToShortWchar(&copy, text, characters + 1);
  return copy;
}

tVariant AllocAndConvertVariant(IMemoryManager* memoryManager, const wchar_t* text) {
  tVariant variant = emptyVariant();
  variant.wide.text = AllocAndConvert(memoryManager, text, &variant.wide.length);
  variant.vt = VTYPE_PWSTR;
  return variant;
}

}  // namespace quorvel
