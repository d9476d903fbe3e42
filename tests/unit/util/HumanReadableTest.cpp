#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "tests/rig/RandomBytes.h"
#include "util/HumanReadable.h"
#include "util/Text.h"

namespace quorvel {
namespace {

using namespace std::string_literals;

// The result of btowc for a number that is not a byte.
constexpr wchar_t kNoCharacter = static_cast<wchar_t>(WEOF);

// An independent implementation: codes each byte by itself, then joins adjacent groups.
std::string expectedHRS(const std::string& raw) {
  constexpr char kOpen = '\1';
  constexpr char kClose = '\2';
  std::string text;
  for (const char byte : raw) {
    if (byte >= '!' && byte <= '~') {
      text += byte;
      continue;
    }
    char code[4];
    std::snprintf(code, sizeof code, "%03u",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += kOpen + std::string(code) + kClose;
  }
  text = replace(text, std::string{kClose, kOpen}, "");
  std::replace(text.begin(), text.end(), kOpen, '(');
  std::replace(text.begin(), text.end(), kClose, ')');
  return text;
}

TEST(RawToHRS, WritesRunsOfInvisibleBytesAsCodes) {
  const struct {
    std::string raw;
    std::string text;
  } rows[] = {
      {"", ""},
      {"AB\r\n", "AB(013010)"},
      {"A B", "A(032)B"},
      {"\xFF", "(255)"},
      {"\x02"
       "123\r\n",
       "(002)123(013010)"},
      {"\xC3\x84", "(195132)"},
      {"\0"s, "(000)"},
      {"\0\0A\0"s, "(000000)A(000)"},
      {"\x1D", "(029)"},
      {"\x7F", "(127)"},
      {"\x80", "(128)"},
      {"!~", "!~"},
      {" ", "(032)"},
      {"()", "()"},
      {"(\r)", "((013))"},
  };
  for (const auto& row : rows) EXPECT_EQ(raw2HRS(row.raw), row.text);
}

TEST(RawToHRS, EveryByteIsEitherVisibleOrCoded) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string raw(1, static_cast<char>(byte));
    EXPECT_EQ(raw2HRS(raw), expectedHRS(raw)) << byte;
    EXPECT_EQ(raw2HRS(raw) == raw, byte >= 0x21 && byte <= 0x7E) << byte;
  }
}

TEST(RawToHRS, AgreesWithAnotherImplementation) {
  rig::RandomBytes random(1);
  for (int i = 0; i < 500; ++i) {
    const std::string raw = random.bytes(random.number(60));
    EXPECT_EQ(raw2HRS(raw), expectedHRS(raw));
  }
}

TEST(RawToHRS, TakesALongText) {
  const std::string text = raw2HRS(std::string(10000, '\r'));
  EXPECT_EQ(text.size(), 30002u);
  EXPECT_EQ(text.substr(0, 7), "(013013");
}

TEST(RawToHRS, ConvertsExactlyTheGivenBytes) {
  EXPECT_EQ(raw2HRS("ABC", 2), "AB");
  EXPECT_EQ(raw2HRS("A\0B", 3), "A(000)B");
  EXPECT_EQ(raw2HRS("ABC", 0), "");
  EXPECT_EQ(raw2HRS("ABC", -1), "");
  EXPECT_EQ(raw2HRS(static_cast<const char*>(nullptr), 0), "");
}

TEST(RawToHRS, WideTextBecomesTheCodesOfItsUtf8Bytes) {
  EXPECT_EQ(raw2HRS(L"Ä"s), L"(195132)");
  EXPECT_EQ(raw2HRS(L"aЖ\r"s), L"a(208150013)");
  EXPECT_EQ(raw2HRS(L""s), L"");
}

TEST(RawToHRS, ConvertsExactlyTheGivenWideCharacters) {
  EXPECT_EQ(raw2HRS(L"ABC", 2), L"AB");
  EXPECT_EQ(raw2HRS(L"A\0B", 3), L"A(000)B");
  EXPECT_EQ(raw2HRS(L"ABC", 0), L"");
  EXPECT_EQ(raw2HRS(L"ABC", -5), L"");
  EXPECT_EQ(raw2HRS(static_cast<const wchar_t*>(nullptr), 0), L"");
}

struct Reading {
  std::wstring text;
  std::wstring raw;
};

std::vector<Reading> readings() {
  return {
      {L"", L""},
      {L"abc", L"abc"},
      {L"аб в\r", L"аб в\r"},
      // A group that runs to the end of the text gives its complete codes.
      {L"a(013", L"a\r"},
      {L"(065", L"A"},
      {L"a(", L"a"},
      {L"a(0", L"a"},
      {L"a(01", L"a"},
      // Its digits are read again from each later digit on.
      {L"(0130", {L'\r', static_cast<wchar_t>(std::btowc(130))}},
      {L"(013010", {L'\r', L'\n', static_cast<wchar_t>(std::btowc(130)), kNoCharacter, L'\n'}},
      {L"(065066067",
       {L'A', L'B', L'C', kNoCharacter, kNoCharacter, kNoCharacter, kNoCharacter, L'B', L'C',
        kNoCharacter, kNoCharacter, L'C'}},
      {L"(999", {kNoCharacter}},
      {L"(256", {kNoCharacter}},
      {L"(000", {L'\0'}},
      // A closed group is an error.
      {L"a(013)", L""},
      {L"(013010)", L""},
      {L"a(013)b", L""},
      {L"a(01)", L""},
      {L"a(1)", L""},
      // So is anything but a digit in a group.
      {L"a)", L""},
      {L")", L""},
      {L"((", L""},
      {L"a((013", L""},
      {L"a(0(13", L""},
      {L"a(x13", L""},
      {L"a(013x", L""},
      {L"a(01 ", L""},
      {L"a(-13", L""},
      {L"a(٠١٣", L""},
      // An empty group is accepted.
      {L"a()b", L"ab"},
      {L"()(065", L"A"},
      {L"())", L""},
  };
}

TEST(HRSToRaw, ReadsTextWithoutGroupsAndUnclosedGroups) {
  for (const Reading& reading : readings()) {
    SCOPED_TRACE(testing::PrintToString(reading.text));
    EXPECT_EQ(hrs2Raw(reading.text), reading.raw);
  }
}

TEST(HRSToRaw, TakesALongText) {
  EXPECT_EQ(hrs2Raw(std::wstring(10000, L'x')), std::wstring(10000, L'x'));
  EXPECT_EQ(hrs2Raw(L"(" + std::wstring(1000, L'0') + L")"), L"");
}

TEST(HRSToRaw, WritesTheSameToABuffer) {
  for (const Reading& reading : readings()) {
    SCOPED_TRACE(testing::PrintToString(reading.text));
    std::wstring buffer(20, L'?');
    const int written = hrs2Raw(buffer.data(), reading.text, 20);
    ASSERT_EQ(static_cast<std::size_t>(written), reading.raw.size());
    EXPECT_EQ(buffer.substr(0, reading.raw.size()), reading.raw);
  }
}

TEST(HRSToRaw, LeavesTheRestOfTheBuffer) {
  std::wstring buffer = L"??????";
  EXPECT_EQ(hrs2Raw(buffer.data(), L"abc", 6), 3);
  EXPECT_EQ(buffer, L"abc???");
}

TEST(HRSToRaw, WritesAtMostTheCapacity) {
  std::wstring buffer = L"??????";
  EXPECT_EQ(hrs2Raw(buffer.data(), L"abcdef", 4), 4);
  EXPECT_EQ(buffer, L"abcd??");
  EXPECT_EQ(hrs2Raw(buffer.data(), L"xyz", 3), 3);
  EXPECT_EQ(buffer, L"xyzd??");
}

TEST(HRSToRaw, AnErrorFillsTheWholeBufferWithZeros) {
  std::wstring buffer = L"??????";
  EXPECT_EQ(hrs2Raw(buffer.data(), L"a(013)", 5), 0);
  EXPECT_EQ(buffer, L"\0\0\0\0\0?"s);
}

TEST(HRSToRaw, DoesNotWriteToAnEmptyBuffer) {
  EXPECT_EQ(hrs2Raw(nullptr, L"abc", 0), 0);
  EXPECT_EQ(hrs2Raw(nullptr, L"a(013)", 0), 0);
  EXPECT_EQ(hrs2Raw(nullptr, L"abc", -1), 0);
}

TEST(RawToPrintable, KeepsVisibleCharactersInOrder) {
  EXPECT_EQ(raw2Printable(L" a b\r\nc\t!~\x7F"s), L"abc!~");
  EXPECT_EQ(raw2Printable(L"aЖbÄc\U0001F600"s), L"abc");
  EXPECT_EQ(raw2Printable(L""s), L"");
  EXPECT_EQ(raw2Printable(L"\0a\0"s), L"a");
  EXPECT_EQ(raw2Printable(std::wstring{kNoCharacter, L'a'}), L"a");
}

TEST(RawToPrintable, KeepsOnlyVisibleAscii) {
  for (wchar_t character = 0; character < 0x500; ++character) {
    const bool visible = character >= 0x21 && character <= 0x7E;
    EXPECT_EQ(raw2Printable(std::wstring(1, character)).size(), visible ? 1u : 0u)
        << static_cast<int>(character);
  }
}

TEST(RawToPrintable, ConvertsExactlyTheGivenCharacters) {
  EXPECT_EQ(raw2Printable(L"a bc", 3), L"ab");
  EXPECT_EQ(raw2Printable(L"a\0b", 3), L"ab");
  EXPECT_EQ(raw2Printable(L"abc", 0), L"");
  EXPECT_EQ(raw2Printable(L"abc", -1), L"");
  EXPECT_EQ(raw2Printable(static_cast<const wchar_t*>(nullptr), 0), L"");
}

}  // namespace
}  // namespace quorvel
