#include "tools/common/VisibleText.h"

#include <algorithm>
#include <array>
#include <boost/locale/utf.hpp>
#include <cstdint>
#include <cstdio>
#include <functional>

namespace terminal {
namespace {

namespace utf = boost::locale::utf;

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};
// What a terminal acts on, or what changes the order or the visibility of the text around it.
constexpr Range kUnsafe[] = {
    {0x00, 0x1F},      // C0 controls
    {0x7F, 0x9F},      // DEL and C1 controls
    {0x061C, 0x061C},  // Arabic letter mark
    {0x200E, 0x200F},  // left-to-right and right-to-left marks
    {0x2028, 0x202E},  // line and paragraph separators, embeddings and overrides
    {0x2066, 0x2069},  // isolates
    {0xFEFF, 0xFEFF},  // byte order mark
};

constexpr std::uint32_t kDelete = 0x7F;
// Unicode's pictures of the C0 controls, in their order, and of DEL.
constexpr std::uint32_t kControlPictures = 0x2400;
constexpr std::uint32_t kDeletePicture = 0x2421;

bool isUnsafe(std::uint32_t character) {
  return std::any_of(std::begin(kUnsafe), std::end(kUnsafe), [&](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

std::string hexadecimal(const char* format, std::uint32_t number) {
  std::array<char, 16> text;
  std::snprintf(text.data(), text.size(), format, static_cast<unsigned>(number));
  return text.data();
}

std::string symbolOf(std::uint32_t character) {
  std::string picture;
  if (character < 0x20) {
    utf::utf_traits<char>::encode(kControlPictures + character, std::back_inserter(picture));
  } else if (character == kDelete) {
    utf::utf_traits<char>::encode(kDeletePicture, std::back_inserter(picture));
  } else {
    picture = hexadecimal("\\u%04X", character);
  }
  return picture;
}

// Copies the text with every unsafe character, and every byte that is not UTF-8, replaced.
std::string replaced(std::string_view text,
                     const std::function<std::string(std::uint32_t)>& character,
                     const std::function<std::string(unsigned char)>& byte) {
  std::string result;
  for (const char* at = text.data(); at != text.data() + text.size();) {
    const char* const start = at;
    const utf::code_point code = utf::utf_traits<char>::decode(at, text.data() + text.size());
    if (code == utf::illegal || code == utf::incomplete) {
      at = start + 1;
      result += byte(static_cast<unsigned char>(*start));
    } else if (isUnsafe(code)) {
      result += character(code);
    } else {
      result.append(start, at);
    }
  }
  return result;
}

}  // namespace

std::string visible(std::string_view utf8, std::string_view kept) {
  const auto character = [&](std::uint32_t code) {
    const bool stays = code < 0x80 && kept.find(static_cast<char>(code)) != kept.npos;
    return stays ? std::string(1, static_cast<char>(code)) : symbolOf(code);
  };
  return replaced(utf8, character, [](unsigned char byte) { return hexadecimal("\\x%02X", byte); });
}

std::string withEscapes(std::string_view json) {
  return replaced(
      json, [](std::uint32_t code) { return hexadecimal("\\u%04x", code); },
      [](unsigned char byte) { return std::string(1, static_cast<char>(byte)); });
}

}  // namespace terminal
