#include "util/HumanReadable.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <cwctype>
#include <iterator>
#include <optional>
#include <string_view>

#include "util/ScopedWipe.h"
#include "util/Text.h"

namespace quorvel {
namespace {

constexpr int kCodeDigits = 3;

// Not isgraph(), which accepts letters above 0x7F in a one-byte locale.
constexpr bool isVisible(char byte) { return byte >= 0x21 && byte <= 0x7E; }

// Returns the place after the code.
char* writeCode(char* out, char byte) {
  const auto code = static_cast<std::uint8_t>(byte);
  *out++ = static_cast<char>('0' + code / 100);
  *out++ = static_cast<char>('0' + code / 10 % 10);
  *out++ = static_cast<char>('0' + code % 10);
  return out;
}

// Appends the characters of all complete codes in `digits`, which is the rest of the text. False
// when it contains anything but digits, such as the end of the group.
bool appendCodes(std::wstring_view digits, std::wstring& result) {
  int value = 0;
  std::size_t held = 0;
  for (const wchar_t character : digits) {
    if (!std::iswdigit(static_cast<wint_t>(character))) return false;
    value = value * 10 + static_cast<int>(character - L'0');
    if (++held < kCodeDigits) continue;
    result += static_cast<wchar_t>(std::btowc(value));
    value = 0;
    held = 0;
  }
  return true;
}

std::optional<std::wstring> readHRS(std::wstring_view text) {
  std::wstring result;
  bool inside = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'(' || text[i] == L')') {
      const bool opens = text[i] == L'(';
      if (opens == inside) return std::nullopt;
      inside = opens;
    } else if (!inside) {
      result += text[i];
    } else if (!appendCodes(text.substr(i), result)) {
      return std::nullopt;
    }
  }
  return result;
}

std::wstring wideText(const wchar_t* text, int count) {
  return count > 0 ? std::wstring(text, static_cast<std::size_t>(count)) : std::wstring();
}

}  // namespace

std::string raw2HRS(const char* bytes, int length) {
  const char* in = bytes;
  const char* const end = bytes + std::max(length, 0);
  // At most: each code in brackets of its own.
  const auto codes = std::count_if(in, end, [](char byte) { return !isVisible(byte); });
  std::string text(static_cast<std::size_t>(end - in + codes * (kCodeDigits + 1)), '\0');
  char* out = text.data();
  while (in != end) {
    const char* const group = std::find_if_not(in, end, isVisible);
    out = std::copy(in, group, out);
    in = group;
    if (in == end) break;
    *out++ = '(';
    while (in != end && !isVisible(*in)) out = writeCode(out, *in++);
    *out++ = ')';
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
  return text;
}

std::string raw2HRS(const std::string& bytes) {
  return raw2HRS(bytes.data(), static_cast<int>(bytes.size()));
}

std::wstring raw2HRS(const std::wstring& text) {
  std::string bytes = wstr2str(text);
  const ScopedWipe wipeBytes(bytes);
  std::string readable = raw2HRS(bytes);
  const ScopedWipe wipeReadable(readable);
  return str2wstr(readable);
}

std::wstring raw2HRS(const wchar_t* text, int count) { return raw2HRS(wideText(text, count)); }

std::wstring hrs2Raw(const std::wstring& text) { return readHRS(text).value_or(std::wstring()); }

int hrs2Raw(wchar_t* buffer, const std::wstring& text, int capacity) {
  if (capacity <= 0) return 0;
  const std::optional<std::wstring> raw = readHRS(text);
  if (!raw) {
    std::fill_n(buffer, capacity, L'\0');
    return 0;
  }
  const int written = static_cast<int>(std::min<std::size_t>(raw->size(), std::size_t(capacity)));
  std::copy_n(raw->data(), written, buffer);
  return written;
}

std::wstring raw2Printable(const wchar_t* text, int count) {
  return raw2Printable(wideText(text, count));
}

std::wstring raw2Printable(const std::wstring& text) {
  std::wstring printable;
  std::copy_if(text.begin(), text.end(), std::back_inserter(printable), [](wchar_t character) {
    return std::isgraph(std::wctob(static_cast<wint_t>(character)));
  });
  return printable;
}

}  // namespace quorvel
