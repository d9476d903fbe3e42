#include <gtest/gtest.h>

#include <string>

#include "util/DeviceNames.h"

namespace quorvel {
namespace {

using namespace std::string_literals;

std::string trimmed(std::string text) {
  EXPECT_TRUE(TrimXMLIllegalChars(text));
  return text;
}

bool isReplacedByTrimming(int byte) {
  return byte >= 0x80 || "&<>\"'"s.find(static_cast<char>(byte)) != std::string::npos;
}

TEST(TrimXMLIllegalChars, ReplacesMarkupBySpaces) {
  EXPECT_EQ(trimmed("a&b<c>\"d'e"), "a b c  d e");
}

TEST(TrimXMLIllegalChars, LeavesPlainAsciiAlone) {
  EXPECT_EQ(trimmed("AT101 Translated Set 2 keyboard (1)/#;"),
            "AT101 Translated Set 2 keyboard (1)/#;");
  EXPECT_EQ(trimmed(""), "");
}

TEST(TrimXMLIllegalChars, ReplacesEachByteOfANonAsciiLetter) {
  EXPECT_EQ(trimmed("a\xD0\x96z"), "a  z");
}

TEST(TrimXMLIllegalChars, ReplacesMarkupAndNonAsciiOnly) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    EXPECT_EQ(trimmed(text), isReplacedByTrimming(byte) ? " " : text) << byte;
    EXPECT_EQ(NotASCII(static_cast<char>(byte)), byte >= 0x80) << byte;
  }
}

TEST(SettingsDeviceName, ReplacesWhatTrimmingReplacesAndControlCharacters) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string name(1, static_cast<char>(byte));
    const bool replaced = byte < 0x20 || isReplacedByTrimming(byte);
    EXPECT_EQ(settingsDeviceName(name), replaced ? " " : name) << byte;
  }
}

TEST(SettingsDeviceName, KeepsTheLength) {
  EXPECT_EQ(settingsDeviceName("Tab\tScanner\r\n\x01\x1F<Ж>\x7F"), "Tab Scanner        \x7F");
  EXPECT_EQ(settingsDeviceName("a\0b"s), "a b");
  EXPECT_EQ(settingsDeviceName(""), "");
}

}  // namespace
}  // namespace quorvel
