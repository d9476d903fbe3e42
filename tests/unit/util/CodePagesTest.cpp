#include <dlfcn.h>
#include <gtest/gtest.h>
#include <iconv.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "tests/rig/Program.h"
#include "tests/rig/RandomBytes.h"
#include "util/CodePages.h"

static int convertersOpened = 0;

// Finds only the converter that is built into the C library, as on a system where the others are in
// a package that is not installed.
extern "C" iconv_t iconv_open(const char* to, const char* from) {
  ++convertersOpened;
  if (std::string(from) == "UTF-8") {
    const auto original = reinterpret_cast<decltype(&iconv_open)>(dlsym(RTLD_NEXT, "iconv_open"));
    return original(to, from);
  }
  errno = EINVAL;
  return reinterpret_cast<iconv_t>(-1);
}

namespace quorvel {
namespace {

using namespace std::string_literals;

// "Привет" in Windows-1251.
const std::string kHelloCP1251 = "\xCF\xF0\xE8\xE2\xE5\xF2";

// The wide characters that the program wrote.
std::wstring fromWide(const std::string& bytes) {
  std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
  return text;
}

// What iconv(1) makes of each input; empty where it reports an error.
std::vector<std::wstring> decodedBySystem(const std::string& encoding,
                                          const std::vector<std::string>& inputs) {
  std::vector<std::wstring> texts;
  for (const auto& result : rig::endingsOf("iconv -f " + encoding + " -t WCHAR_T", inputs)) {
    texts.push_back(result.code == 0 ? fromWide(result.output) : L"");
  }
  return texts;
}

std::string utf8Of(unsigned code) {
  std::string bytes;
  if (code < 0x80) {
    bytes += static_cast<char>(code);
  } else if (code < 0x800) {
    bytes += static_cast<char>(0xC0 | code >> 6);
    bytes += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    bytes += static_cast<char>(0xE0 | code >> 12);
    bytes += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    bytes += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    bytes += static_cast<char>(0xF0 | code >> 18);
    bytes += static_cast<char>(0x80 | (code >> 12 & 0x3F));
    bytes += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    bytes += static_cast<char>(0x80 | (code & 0x3F));
  }
  return bytes;
}

// Random characters of one to four bytes, surrogates (invalid in UTF-8) now and then.
std::string randomUtf8(rig::RandomBytes& random) {
  std::string bytes;
  for (unsigned left = random.number(20); left > 0; --left) {
    const unsigned last[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
    bytes += utf8Of(1 + random.number(last[random.number(3)] - 1));
  }
  return bytes;
}

TEST(ConvertMbsToWcs, DecodesUtf8) {
  EXPECT_EQ(ConvertMbsToWcs("Привет", L"UTF-8"), L"Привет");
  EXPECT_EQ(ConvertMbsToWcs("a\xF0\x9F\x98\x80z", L"UTF-8"), L"a\U0001F600z");
  EXPECT_EQ(ConvertMbsToWcs("", L"UTF-8"), L"");
}

TEST(ConvertMbsToWcs, DecodesWindows1251) {
  EXPECT_EQ(ConvertMbsToWcs(kHelloCP1251, L"Windows-1251"), L"Привет");
  EXPECT_EQ(ConvertMbsToWcs("", L"Windows-1251"), L"");
}

TEST(ConvertMbsToWcs, AnyOtherEncodingNameMeansUtf8) {
  for (const std::wstring& name : {L""s, L"utf-8"s, L"CP1251"s, L"windows-1251"s, L"Windows-1251 "s,
                                   L"KOI8-R"s, std::wstring(10000, L'x')}) {
    EXPECT_EQ(ConvertMbsToWcs("Привет", name), L"Привет");
    EXPECT_EQ(ConvertMbsToWcs(kHelloCP1251, name), L"");
  }
}

TEST(ConvertMbsToWcs, IsEmptyForInvalidOrCutOffText) {
  const std::string hello = "Привет";
  EXPECT_EQ(ConvertMbsToWcs(hello.substr(0, hello.size() - 1), L"UTF-8"), L"");
  EXPECT_EQ(ConvertMbsToWcs("abc\xFFzz", L"UTF-8"), L"");
  EXPECT_EQ(ConvertMbsToWcs("abc\x98zz", L"Windows-1251"), L"");
}

TEST(ConvertMbsToWcs, EndsAtTheFirstNul) {
  EXPECT_EQ(ConvertMbsToWcs("ab\0cd"s, L"UTF-8"), L"ab");
  EXPECT_EQ(ConvertMbsToWcs("\0cd"s, L"UTF-8"), L"");
  EXPECT_EQ(ConvertMbsToWcs("ab\0cd"s, L"Windows-1251"), L"ab");
  // The rest must still be valid.
  EXPECT_EQ(ConvertMbsToWcs("ab\0\xFF"s, L"UTF-8"), L"");
}

TEST(ConvertMbsToWcs, TakesALongText) {
  EXPECT_EQ(ConvertMbsToWcs(std::string(10000, 'x'), L"UTF-8"), std::wstring(10000, L'x'));
  EXPECT_EQ(ConvertMbsToWcs(std::string(10000, '\xC6'), L"Windows-1251"),
            std::wstring(10000, L'Ж'));
}

TEST(ConvertMbsToWcs, NeedsNoConverterForAsciiAndWindows1251) {
  const int before = convertersOpened;
  EXPECT_EQ(ConvertMbsToWcs("4600051000057\x1D\x7F", L"UTF-8"), L"4600051000057\x1D\x7F");
  EXPECT_EQ(ConvertMbsToWcs(kHelloCP1251, L"Windows-1251"), L"Привет");
  EXPECT_EQ(ConvertUTF8Input("4600051000057"), L"4600051000057");
  EXPECT_EQ(ConvertUTF8Input(("a" + kHelloCP1251).c_str()), L"aПривет");
  EXPECT_EQ(convertersOpened, before);
}

TEST(ConvertMbsToWcs, AgreesWithIconvOnEveryByteOfWindows1251) {
  std::vector<std::string> bytes;
  for (int byte = 1; byte < 256; ++byte) bytes.emplace_back(1, static_cast<char>(byte));
  const std::vector<std::wstring> expected = decodedBySystem("CP1251", bytes);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    EXPECT_EQ(ConvertMbsToWcs(bytes[i], L"Windows-1251"), expected[i]) << "byte " << i + 1;
  }
  EXPECT_EQ(expected[0xC6 - 1], L"Ж");
  EXPECT_EQ(expected[0x98 - 1], L"") << "the unassigned byte";
}

TEST(ConvertMbsToWcs, AgreesWithIconvOnUtf8) {
  rig::RandomBytes random(1);
  std::vector<std::string> inputs;
  for (int i = 0; i < 60; ++i) {
    std::string text = randomUtf8(random);
    inputs.push_back(text);
    inputs.push_back(text.substr(0, random.number(static_cast<unsigned>(text.size()))));
    if (!text.empty()) text[random.number(static_cast<unsigned>(text.size() - 1))] ^= '\x80';
    if (text.find('\0') == text.npos) inputs.push_back(text);
  }
  const char* const odd[] = {"\xC0\x80",          // overlong
                             "\xC1\xBF",          // overlong
                             "\xE0\x80\x80",      // overlong
                             "\xED\xA0\x80",      // a surrogate
                             "\xEF\xBB\xBFz",     // a byte order mark
                             "\xEF\xBF\xBF",      // a noncharacter
                             "\xF4\x8F\xBF\xBF",  // the last code point
                             "\xF4\x90\x80\x80",  // beyond it
                             "\xF8\x88\x80\x80\x80",
                             "\xFE",
                             "\xFF",
                             "\x80",
                             "\xBF"};
  inputs.insert(inputs.end(), std::begin(odd), std::end(odd));
  const std::vector<std::wstring> expected = decodedBySystem("UTF-8", inputs);
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    EXPECT_EQ(ConvertMbsToWcs(inputs[i], L"UTF-8"), expected[i])
        << testing::PrintToString(inputs[i]);
  }
}

TEST(IsUTF8String, NeedsMoreContinuationBytesThanSuspiciousLeads) {
  const struct {
    std::string text;
    bool utf8;
  } rows[] = {
      {"", false},
      {"a", false},
      {"abc", false},
      {"aПривет", true},
      {"a" + kHelloCP1251, false},
      // The first byte is ignored.
      {"\xD0", false},
      {"\x80", false},
      {"\xFF", false},
      {"\x80"
       "a",
       false},
      {"\xFF\x80", true},
      {"Ж", true},
      // The bounds of a continuation byte.
      {"a\x7F", false},
      {"a\x80", true},
      {"a\xBF", true},
      // Lead bytes are suspicious, except the usual ones.
      {"a\xC2", false},
      {"a\xC2\x80", true},
      {"a\xC0\x80", false},
      {"a\xC1\x80", false},
      {"a\xC0\x80\x80", true},
      {"a\xC0\xC0\x80\x80", false},
      {"a\xC0\xC0\x80\x80\x80", true},
      {"a\xE2\x80\x9C", true},
      {"a\xE3\x80\x80", true},
      {"a\xFF\x80", false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(IsUTF8String(row.text.c_str()), row.utf8) << testing::PrintToString(row.text);
  }
}

TEST(IsUTF8String, OnlyTheUsualLeadBytesAreUnsuspicious) {
  for (int lead = 0xC0; lead < 0x100; ++lead) {
    const bool usual = lead == 0xC2 || lead == 0xC3 || lead == 0xD0 || lead == 0xD1 || lead == 0xE2;
    const std::string text = {'a', static_cast<char>(lead), '\x80'};
    EXPECT_EQ(IsUTF8String(text.c_str()), usual) << lead;
  }
}

TEST(ConvertUTF8Input, DecodesInTheGuessedEncoding) {
  EXPECT_EQ(ConvertUTF8Input("aПривет"), L"aПривет");
  EXPECT_EQ(ConvertUTF8Input(("a" + kHelloCP1251).c_str()), L"aПривет");
  EXPECT_EQ(ConvertUTF8Input("AT Translated Set 2 keyboard"), L"AT Translated Set 2 keyboard");
  EXPECT_EQ(ConvertUTF8Input(""), L"");
  // A single byte is always Windows-1251.
  EXPECT_EQ(ConvertUTF8Input("\xC6"), L"Ж");
}

TEST(ConvertUTF8Input, IsEmptyForTextThatIsInvalidInTheGuessedEncoding) {
  EXPECT_EQ(ConvertUTF8Input("aЖ\xD0"), L"");
  EXPECT_EQ(ConvertUTF8Input("\x98"), L"");
}

TEST(ConvertUTF8Input, LeavesAsciiAsItIs) {
  std::string ascii;
  std::wstring wide;
  for (int byte = 1; byte < 0x80; ++byte) {
    ascii += static_cast<char>(byte);
    wide += static_cast<wchar_t>(byte);
  }
  EXPECT_EQ(ConvertUTF8Input(ascii.c_str()), wide);
}

TEST(ConvertUTF8Input, TakesALongText) {
  EXPECT_EQ(ConvertUTF8Input(std::string(10000, 'x').c_str()), std::wstring(10000, L'x'));
}

}  // namespace
}  // namespace quorvel
