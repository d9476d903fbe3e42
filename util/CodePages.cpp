#include "util/CodePages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "util/Handles.h"

namespace quorvel {
namespace {

// Lead bytes of Russian UTF-8 text: the Latin-1 supplement, Cyrillic, and general punctuation.
constexpr std::array<std::uint8_t, 5> kUsualLeadBytes = {0xC2, 0xC3, 0xD0, 0xD1, 0xE2};

// The characters of Windows-1251 from 0x80 to 0xBF; 0 is the one unassigned byte. The Russian
// alphabet follows in order.
constexpr std::array<std::uint16_t, 64> kWindows1251 = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409,
    0x2039, 0x040A, 0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0,      0x2122, 0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0,
    0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB,
    0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6,
    0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457};
constexpr std::uint8_t kFirstOfAlphabet = 0xC0;
constexpr wchar_t kCyrillicA = 0x0410;

constexpr bool isContinuation(std::uint8_t byte) { return byte >= 0x80 && byte <= 0xBF; }

bool isSuspiciousLead(std::uint8_t byte) {
  return byte >= 0xC0 &&
         std::find(kUsualLeadBytes.begin(), kUsualLeadBytes.end(), byte) == kUsualLeadBytes.end();
}

bool isAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) == 0; });
}

// 0 for the NUL and for the unassigned byte.
wchar_t fromWindows1251(std::uint8_t byte) {
  if (byte < 0x80) return byte;
  if (byte < kFirstOfAlphabet) return kWindows1251[byte - 0x80U];
  return static_cast<wchar_t>(kCyrillicA + (byte - kFirstOfAlphabet));
}

// Both decoders give the whole text, or an empty one when a part of it is invalid.

// Not by iconv: some systems package its converter for Windows-1251 apart, or not at all.
std::wstring decodeWindows1251(std::string_view bytes) {
  std::wstring text(bytes.size(), L'\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    text[i] = fromWindows1251(static_cast<std::uint8_t>(bytes[i]));
    if (text[i] == 0 && bytes[i] != 0) return {};
  }
  return text;
}

// The converter for UTF-8 is a part of the C library itself.
std::wstring decodeUtf8(std::string bytes) {
  const IconvDescriptor conversion("WCHAR_T", "UTF-8");
  if (!conversion) return {};
  std::wstring text(bytes.size(), L'\0');  // there are never more characters than bytes
  char* in = bytes.data();
  std::size_t inLeft = bytes.size();
  char* out = reinterpret_cast<char*>(text.data());
  std::size_t outLeft = text.size() * sizeof(wchar_t);
  if (iconv(conversion.get(), &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
    return {};
  }
  text.resize(text.size() - outLeft / sizeof(wchar_t));
  return text;
}

std::wstring upToFirstNul(std::wstring text) {
  text.resize(std::min(text.find(L'\0'), text.size()));
  return text;
}

}  // namespace

std::wstring ConvertMbsToWcs(const std::string& bytes, const std::wstring& encoding) {
  // ASCII reads the same in both encodings.
  if (isAscii(bytes)) return upToFirstNul(std::wstring(bytes.begin(), bytes.end()));
  return upToFirstNul(encoding == kEncodingWindows1251 ? decodeWindows1251(bytes)
                                                       : decodeUtf8(bytes));
}

bool IsUTF8String(const char* text) {
  if (*text == '\0') return false;
  int suspicious = 0;
  int continuations = 0;
  for (const char* at = text + 1; *at != '\0'; ++at) {
    const auto byte = static_cast<std::uint8_t>(*at);
    continuations += isContinuation(byte);
    suspicious += isSuspiciousLead(byte);
  }
  return suspicious < continuations;
}

std::wstring ConvertUTF8Input(const char* text) {
  return IsUTF8String(text) ? decodeUtf8(text) : decodeWindows1251(text);
}

}  // namespace quorvel
