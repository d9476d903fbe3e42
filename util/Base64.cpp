#include "util/Base64.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "util/Text.h"

namespace quorvel {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(kAlphabet.size() == 64);

constexpr std::uint8_t kForeign = 0xFF;

// The sextet of every byte, kForeign for a byte outside the alphabet.
constexpr std::array<std::uint8_t, 256> kSextets = [] {
  std::array<std::uint8_t, 256> sextets{};
  sextets.fill(kForeign);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    sextets[static_cast<std::uint8_t>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return sextets;
}();

}  // namespace

std::string base64_encode(const std::string& raw) {
  std::string text;
  text.reserve((raw.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < raw.size(); i += 3) {
    const std::size_t bytes = std::min<std::size_t>(3, raw.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8 | (k < bytes ? static_cast<std::uint8_t>(raw[i + k]) : 0u);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= bytes ? kAlphabet[group >> (18 - 6 * k) & 0x3F] : '=';
    }
  }
  return text;
}

std::string base64_decode(const std::string& text) {
  std::string raw;
  raw.reserve(text.size() / 4 * 3 + 2);
  std::uint32_t bits = 0;
  int pending = 0;  // how many low bits of `bits` belong to the next byte
  for (const char character : text) {
    const std::uint8_t sextet = kSextets[static_cast<std::uint8_t>(character)];
    if (sextet == kForeign) break;
    bits = bits << 6 | sextet;
    pending += 6;
    if (pending < 8) continue;
    pending -= 8;
    raw += static_cast<char>(bits >> pending & 0xFF);
  }
  return raw;
}

std::string raw2Base64(const std::string& raw) { return base64_encode(raw); }

std::wstring raw2Base64(const std::wstring& raw) { return str2wstr(base64_encode(wstr2str(raw))); }

std::string base642Raw(const std::string& text) { return base64_decode(text); }

std::wstring base642Raw(const std::wstring& text) {
  return str2wstr(base64_decode(wstr2str(text)));
}

}  // namespace quorvel
