// How the tools show text that could control a terminal.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tools/common/VisibleText.h"

namespace {

using terminal::visible;
using terminal::withEscapes;

TEST(VisibleText, OrdinaryTextStaysAsItIs) {
  for (const char* text : {"", "4600051000057", "Привет, «мир»", "日本 🙂", "\\x41"}) {
    EXPECT_EQ(visible(text), text);
    EXPECT_EQ(withEscapes(text), text);
  }
}

TEST(VisibleText, ControlCharactersBecomeTheirSymbols) {
  EXPECT_EQ(visible(std::string("a\0b\x1B[31m\x1D\r\n\t\x7F", 13)), "a␀b␛[31m␝␍␊␉␡");
}

TEST(VisibleText, OtherCharactersThatATerminalActsOnBecomeTheirNumbers) {
  EXPECT_EQ(visible("\u009B31m"), "\\u009B31m");
  EXPECT_EQ(visible("a\u202Eb\u2066c\u200Fd\u061Ce\u2028f\uFEFFg"),
            "a\\u202Eb\\u2066c\\u200Fd\\u061Ce\\u2028f\\uFEFFg");
}

TEST(VisibleText, BytesThatAreNotUtf8BecomeTheirNumbers) {
  // A stray byte, a truncated character, and the raw byte that starts a C1 control sequence.
  EXPECT_EQ(visible("a\xFF\xD0"
                    "b\x9B"
                    "c\xD0"),
            "a\\xFF\\xD0b\\x9Bc\\xD0");
}

TEST(VisibleText, LeavesTheGivenCharacters) { EXPECT_EQ(visible("a\tb\x1B", "\t"), "a\tb␛"); }

TEST(VisibleText, JsonKeepsItsMeaning) {
  const std::string data = "\x1B[2J\u009B\u202E\x7F\u2028Ж";
  const std::string line = withEscapes(nlohmann::json(data).dump());
  EXPECT_EQ(line, "\"\\u001b[2J\\u009b\\u202e\\u007f\\u2028Ж\"");
  EXPECT_EQ(nlohmann::json::parse(line), data);
}

}  // namespace
