#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/rig/Program.h"
#include "tests/rig/RandomBytes.h"
#include "util/Base64.h"

namespace quorvel {
namespace {

using namespace std::string_literals;

struct Pair {
  std::string raw;
  std::string text;
};

const std::string kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::vector<Pair> publishedVectors() {
  return {{"", ""},
          {"f", "Zg=="},
          {"fo", "Zm8="},
          {"foo", "Zm9v"},
          {"foob", "Zm9vYg=="},
          {"fooba", "Zm9vYmE="},
          {"foobar", "Zm9vYmFy"}};
}

// Every length up to 64, so that each length of the last group occurs many times, and some long
// ones.
std::vector<std::string> randomRaws(unsigned seed) {
  rig::RandomBytes random(seed);
  std::vector<std::string> raws;
  for (std::size_t length = 0; length <= 64; ++length) raws.push_back(random.bytes(length));
  for (const std::size_t length : {255u, 256u, 1000u, 4095u, 10000u}) {
    raws.push_back(random.bytes(length));
  }
  return raws;
}

TEST(Base64, EncodesThePublishedVectors) {
  for (const Pair& pair : publishedVectors()) {
    EXPECT_EQ(base64_encode(pair.raw), pair.text);
    EXPECT_EQ(raw2Base64(pair.raw), pair.text);
  }
  EXPECT_EQ(base64_encode("ab"), "YWI=");
}

TEST(Base64, DecodesThePublishedVectors) {
  for (const Pair& pair : publishedVectors()) {
    EXPECT_EQ(base64_decode(pair.text), pair.raw);
    EXPECT_EQ(base642Raw(pair.text), pair.raw);
  }
  EXPECT_EQ(base64_decode("YWI="), "ab");
}

TEST(Base64, UsesTheStandardAlphabetInOrder) {
  // The sextets 0 to 63 in a row.
  std::string raw;
  for (unsigned i = 0; i < 64; i += 4) {
    const unsigned group = i << 18 | (i + 1) << 12 | (i + 2) << 6 | (i + 3);
    for (const int shift : {16, 8, 0}) raw += static_cast<char>(group >> shift & 0xFF);
  }
  EXPECT_EQ(base64_encode(raw), kAlphabet);
  EXPECT_EQ(base64_decode(kAlphabet), raw);
}

TEST(Base64, EncodesLikeTheBase64Program) {
  const std::vector<std::string> raws = randomRaws(1);
  const std::vector<rig::Ending> expected = rig::endingsOf("base64 -w0", raws);
  for (std::size_t i = 0; i < raws.size(); ++i) {
    ASSERT_EQ(expected[i].code, 0);
    EXPECT_EQ(base64_encode(raws[i]), expected[i].output) << raws[i].size() << " bytes";
  }
}

TEST(Base64, IsReadByTheBase64Program) {
  rig::RandomBytes random(2);
  std::string text;
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    // Multiples of three bytes: not every decoder continues after padding.
    const std::string raw = random.bytes(3 * random.number(100));
    text += base64_encode(raw);
    expected += raw;
  }
  EXPECT_EQ(rig::outputOf({"base64", "-d"}, text), expected);
}

TEST(Base64, RoundTripsEveryByte) {
  for (const std::string& raw : randomRaws(3)) EXPECT_EQ(base64_decode(base64_encode(raw)), raw);
}

TEST(Base64, PadsToAMultipleOfFour) {
  for (const std::string& raw : randomRaws(4)) {
    EXPECT_EQ(base64_encode(raw).size(), (raw.size() + 2) / 3 * 4);
  }
}

TEST(Base64, DecodingStopsAtTheFirstForeignCharacter) {
  EXPECT_EQ(base64_decode("YW I="), "a");
  EXPECT_EQ(base64_decode("Zm9v\nYmFy"), "foo");
  EXPECT_EQ(base64_decode("Zm9v-YmFy"), "foo");
  EXPECT_EQ(base64_decode("Zm9v_YmFy"), "foo");
  EXPECT_EQ(base64_decode("Zm9v\0YmFy"s), "foo");
  EXPECT_EQ(base64_decode("Zm9v\xD0\x9FYmFy"), "foo");
  EXPECT_EQ(base64_decode(" Zm9v"), "");
}

TEST(Base64, DecodingStopsAtTheFirstPadding) {
  EXPECT_EQ(base64_decode("YQ==YWI="), "a");
  EXPECT_EQ(base64_decode("=YWI="), "");
  EXPECT_EQ(base64_decode("YWI=Zm9v"), "ab");
  EXPECT_EQ(base64_decode("Y==="), "");
}

TEST(Base64, DecodingStopsAtEveryByteOutsideTheAlphabet) {
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    const bool foreign = kAlphabet.find(character) == kAlphabet.npos;
    EXPECT_EQ(base64_decode("Zm9v"s + character + "AAA").size(), foreign ? 3u : 6u) << byte;
  }
}

TEST(Base64, AnIncompleteGroupGivesItsCompleteBytes) {
  EXPECT_EQ(base64_decode("Z"), "");
  EXPECT_EQ(base64_decode("Zg"), "f");
  EXPECT_EQ(base64_decode("Zm8"), "fo");
  EXPECT_EQ(base64_decode("Zm9vY"), "foo");
  EXPECT_EQ(base64_decode("Zm9vYg"), "foob");
  EXPECT_EQ(base64_decode("Zm9vYmE"), "fooba");
  // Bits after the last byte are dropped.
  EXPECT_EQ(base64_decode("Zh=="), "f");
  EXPECT_EQ(base64_decode("Zv=="), "f");
}

TEST(Base64, GarbageDecodesUpToTheFirstForeignCharacter) {
  rig::RandomBytes random(5);
  std::vector<std::string> texts;
  std::string completed;  // the part of each text to be decoded, completed with zero sextets
  for (int i = 0; i < 2000; ++i) {
    texts.push_back(random.bytesOf(kAlphabet + "= \n\xFF", random.number(120)));
    std::string part = texts.back().substr(0, texts.back().find_first_not_of(kAlphabet));
    while (part.size() % 4 != 0) part += 'A';
    completed += part;
  }
  const std::string raw = rig::outputOf({"base64", "-d"}, completed);
  std::size_t at = 0;
  for (const std::string& text : texts) {
    const std::size_t characters = std::min(text.find_first_not_of(kAlphabet), text.size());
    EXPECT_EQ(base64_decode(text), raw.substr(at, characters * 6 / 8)) << text;
    at += (characters + 3) / 4 * 3;
  }
  EXPECT_EQ(at, raw.size());
}

TEST(Base64, WideFormsGoThroughUtf8) {
  EXPECT_EQ(raw2Base64(L"Привет"s), L"0J/RgNC40LLQtdGC");
  EXPECT_EQ(base642Raw(L"0J/RgNC40LLQtdGC"s), L"Привет");
  EXPECT_EQ(raw2Base64(L"123"s), L"MTIz");
  EXPECT_EQ(base642Raw(L"MTIz"s), L"123");
  EXPECT_EQ(raw2Base64(L"\U0001F600"s), L"8J+YgA==");
  EXPECT_EQ(base642Raw(L"8J+YgA=="s), L"\U0001F600");
  EXPECT_EQ(raw2Base64(L""s), L"");
  EXPECT_EQ(base642Raw(L""s), L"");
}

TEST(Base64, WideDecodingSkipsInvalidUtf8) {
  EXPECT_EQ(base642Raw(L"/0E="s), L"A");   // FF 41
  EXPECT_EQ(base642Raw(L"QYBC"s), L"AB");  // 41 80 42
  EXPECT_EQ(base642Raw(L"QdA="s), L"A");   // 41 D0, cut off
  EXPECT_EQ(base642Raw(L"/////w=="s), L"");
}

TEST(Base64, WideDecodingStopsAtANonAsciiLetter) { EXPECT_EQ(base642Raw(L"MTIzЖMTIz"s), L"123"); }

TEST(Base64, WideDecodingKeepsZeroBytes) { EXPECT_EQ(base642Raw(L"QQBC"s), L"A\0B"s); }

}  // namespace
}  // namespace quorvel
