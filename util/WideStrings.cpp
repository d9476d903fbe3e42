#include "util/WideStrings.h"

#include <algorithm>
#include <cwchar>

namespace quorvel {
namespace {

std::uint32_t lengthWithTerminator(const wchar_t* text) {
  return static_cast<std::uint32_t>(std::wcslen(text)) + 1;
}

}  // namespace

std::uint32_t getLenShortWcharStr(const WCHAR_T* text) {
  return static_cast<std::uint32_t>(std::char_traits<WCHAR_T>::length(text));
}

std::uint32_t convToShortWchar(WCHAR_T** destination, const wchar_t* source, std::uint32_t count) {
  if (count == 0) count = lengthWithTerminator(source);
  if (!*destination) *destination = new WCHAR_T[count];
  std::transform(source, source + count, *destination,
                 [](wchar_t character) { return static_cast<WCHAR_T>(character); });
  return count;
}

std::uint32_t convFromShortWchar(wchar_t** destination, const WCHAR_T* source,
                                 std::uint32_t count) {
  if (count == 0) count = getLenShortWcharStr(source) + 1;
  if (!*destination) *destination = new wchar_t[count];
  wchar_t* const end = *destination + count;
  wchar_t* out = *destination;
  do {
    *out++ = *source++;
  } while (out != end && *source != 0);
  std::fill(out, end, L'\0');
  return count;
}

std::wstring convFromShortWchar(const WCHAR_T* source, std::uint32_t length) {
  if (!source) return {};
  if (length == 0) length = getLenShortWcharStr(source);
  if (length == 0) return {};
  std::wstring text(length, L'\0');
  wchar_t* buffer = text.data();
  convFromShortWchar(&buffer, source, length);
  return text;
}

WcharWrapper::WcharWrapper(const wchar_t* text) {
  if (!text) return;
  const std::uint32_t count = lengthWithTerminator(text);
  wide_ = std::make_unique<wchar_t[]>(count);
  std::copy_n(text, count, wide_.get());
  short_ = std::make_unique<WCHAR_T[]>(count);
  WCHAR_T* narrowed = short_.get();
  convToShortWchar(&narrowed, wide_.get());
}

WcharWrapper::WcharWrapper(const WCHAR_T* text) {
  if (!text) return;
  const std::uint32_t count = getStrLen(text) + 1;
  short_ = std::make_unique<WCHAR_T[]>(count);
  std::copy_n(text, count, short_.get());
  wide_ = std::make_unique<wchar_t[]>(count);
  wchar_t* widened = wide_.get();
  convFromShortWchar(&widened, short_.get());
}

}  // namespace quorvel
