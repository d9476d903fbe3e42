#include <gtest/gtest.h>

#include <ctime>
#include <locale>
#include <stdexcept>
#include <string>

#include "util/Text.h"

namespace quorvel {
namespace {

using namespace std::string_literals;

// Every blank of the "C" locale.
const std::string kBlanks = " \t\n\v\f\r";
const std::wstring kWideBlanks = L" \t\n\v\f\r";

// Makes a locale the default one while it lives.
class DefaultLocale {
 public:
  explicit DefaultLocale(const char* name) : before_(std::locale::global(std::locale(name))) {}
  ~DefaultLocale() { std::locale::global(before_); }

 private:
  std::locale before_;
};

TEST(Trim, RemovesBlanksAtBothEndsInPlace) {
  std::string text = kBlanks + "a b" + kBlanks;
  EXPECT_EQ(trim(text), "a b");
  EXPECT_EQ(text, "a b");
  std::wstring wide = kWideBlanks + L"Ж ж" + kWideBlanks;
  EXPECT_EQ(trim(wide), L"Ж ж");
  EXPECT_EQ(wide, L"Ж ж");
}

TEST(Trim, ATextOfBlanksBecomesEmpty) {
  std::string text = kBlanks;
  EXPECT_EQ(trim(text), "");
  EXPECT_EQ(text, "");
  std::wstring wide = kWideBlanks;
  EXPECT_EQ(trim(wide), L"");
  EXPECT_EQ(wide, L"");
  std::string empty;
  EXPECT_EQ(trim(empty), "");
}

TEST(Trim, KeepsOtherCharacters) {
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    const bool blank = kBlanks.find(character) != kBlanks.npos;
    EXPECT_EQ(trimed(std::string(1, character)).empty(), blank) << byte;
  }
  EXPECT_EQ(trimed(L"\u00A0a\u2003"s), L"\u00A0a\u2003");
}

TEST(Trim, TheCopyingFormLeavesItsArgument) {
  const std::string text = " a ";
  EXPECT_EQ(trimed(text), "a");
  EXPECT_EQ(text, " a ");
  const std::wstring wide = L" a ";
  EXPECT_EQ(trimed(wide), L"a");
  EXPECT_EQ(wide, L" a ");
}

TEST(Trim, UsesTheBlanksOfTheDefaultLocale) try {
  const DefaultLocale utf8("C.UTF-8");
  EXPECT_EQ(trimed(L"\u2003a\u2003"s), L"a");
} catch (const std::runtime_error&) {
  GTEST_SKIP() << "no such locale on this system";
}

TEST(Replace, ReplacesEveryOccurrenceFromTheLeft) {
  const struct {
    std::string text, what, with, result;
  } rows[] = {
      {"aaa", "aa", "b", "ba"},
      {"aaaa", "aa", "a", "aa"},
      {"a.b.c", ".", "", "abc"},
      {"a.b.c", ".", "..", "a..b..c"},
      {"abc", "x", "y", "abc"},
      {"abc", "abc", "", ""},
      {"abc", "abcd", "", "abc"},
      {"abc", "", "y", "abc"},
      {"", "x", "y", ""},
      {"", "", "y", ""},
      {"a\0b\0"s, "\0"s, "0", "a0b0"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(replace(row.text, row.what, row.with), row.result) << row.text << ", " << row.what;
    EXPECT_EQ(replace(str2wstr(row.text), str2wstr(row.what), str2wstr(row.with)),
              str2wstr(row.result))
        << row.text << ", " << row.what;
  }
}

TEST(Replace, TakesALongText) {
  EXPECT_EQ(replace(std::string(10000, 'a'), "a"s, "bc"s).size(), 20000u);
}

TEST(ToLower, LowersAsciiInTheClassicLocale) {
  EXPECT_EQ(str_tolower("RU_ru-123 ABCXYZ[]"s), "ru_ru-123 abcxyz[]");
  EXPECT_EQ(str_tolower(L"RU_ru-123 ABCXYZ[]"s), L"ru_ru-123 abcxyz[]");
  EXPECT_EQ(str_tolower(""s), "");
  EXPECT_EQ(str_tolower("Ж"s), "Ж");
  EXPECT_EQ(str_tolower(L"\0A\0"s), L"\0a\0"s);
}

TEST(ToLower, UsesTheUpperCaseOfTheDefaultLocale) try {
  const DefaultLocale utf8("C.UTF-8");
  EXPECT_EQ(str_tolower(L"ПРИВЕТ"s), L"привет");
} catch (const std::runtime_error&) {
  GTEST_SKIP() << "no such locale on this system";
}

const struct {
  std::wstring wide;
  std::string utf8;
} kUtf8[] = {
    {L"", ""},
    {L"abc", "abc"},
    {L"Привет", "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82"},
    {L"\u20AC", "\xE2\x82\xAC"},
    {L"\U0001F600", "\xF0\x9F\x98\x80"},
    {L"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
    {L"\x7F\x80", "\x7F\xC2\x80"},
    {L"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80"},
    {L"a\0b"s, "a\0b"s},
};

TEST(Utf8, IsWrittenByThreeNames) {
  for (const auto& row : kUtf8) {
    EXPECT_EQ(wstr2str(row.wide), row.utf8);
    EXPECT_EQ(wstrtostr(row.wide), row.utf8);
    EXPECT_EQ(wba2ba(row.wide), row.utf8);
  }
}

TEST(Utf8, IsReadByThreeNames) {
  for (const auto& row : kUtf8) {
    EXPECT_EQ(str2wstr(row.utf8), row.wide);
    EXPECT_EQ(strtowstr(row.utf8), row.wide);
    EXPECT_EQ(ba2wba(row.utf8), row.wide);
  }
}

TEST(Utf8, SkipsInvalidCodePoints) {
  const std::wstring text = {L'a', wchar_t(0xD800), L'b', wchar_t(0xDFFF), L'c', wchar_t(0x110000),
                             L'd', wchar_t(-1),     L'e'};
  EXPECT_EQ(wstr2str(text), "abcde");
  EXPECT_EQ(wstr2str(std::wstring(1, wchar_t(-2))), "");
}

TEST(Utf8, SkipsInvalidSequences) {
  EXPECT_EQ(str2wstr("a\x80z"), L"az");              // a continuation byte without a lead byte
  EXPECT_EQ(str2wstr("a\xFFz"), L"az");              // never occurs in UTF-8
  EXPECT_EQ(str2wstr("a\xED\xA0\x80z"), L"az");      // a surrogate
  EXPECT_EQ(str2wstr("a\xF4\x90\x80\x80z"), L"az");  // beyond the last code point
  EXPECT_EQ(str2wstr("a\xC0\x80z"), L"az");          // overlong
  EXPECT_EQ(str2wstr("aЖ\xD0"), L"aЖ");              // cut off
  EXPECT_EQ(str2wstr("a\xF0\x9F\x98"), L"a");        // cut off
}

TEST(Utf8, RoundTripsEveryCodePoint) {
  std::wstring all;
  for (wchar_t code = 0; code <= 0x10FFFF; ++code) {
    if (code < 0xD800 || code > 0xDFFF) all += code;
  }
  EXPECT_TRUE(str2wstr(wstr2str(all)) == all);
}

TEST(TimeString, IsPaddedWithZeros) {
  std::string text;
  std::string expected;
  std::time_t before;
  do {
    before = std::time(nullptr);
    text = getCurrentTimeString("%Y%m%d%H%M%S");
    char buffer[20];
    std::strftime(buffer, sizeof buffer, "%Y%m%d%H%M%S", std::localtime(&before));
    expected = buffer;
  } while (std::time(nullptr) != before);
  ASSERT_EQ(text.size(), 256u);
  EXPECT_EQ(text, expected + std::string(256 - 14, '\0'));
}

TEST(TimeString, ReadsAsTheTextThroughCStr) {
  const std::string text = getCurrentTimeString("%Y");
  ASSERT_EQ(text.size(), 256u);
  EXPECT_EQ(std::string(text.c_str()).size(), 4u);
  EXPECT_GE(text.substr(0, 4), "2025");
}

TEST(TimeString, IsEmptyWhenTheTextDoesNotFit) {
  EXPECT_EQ(getCurrentTimeString(std::string(255, 'x')), std::string(255, 'x') + '\0');
  EXPECT_EQ(getCurrentTimeString(std::string(256, 'x')), "");
  EXPECT_EQ(getCurrentTimeString(std::string(10000, 'x')), "");
  EXPECT_EQ(getCurrentTimeString(""), "");
}

}  // namespace
}  // namespace quorvel
