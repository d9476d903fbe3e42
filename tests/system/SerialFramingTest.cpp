// How bytes on a serial line become messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <random>

#include "tests/rig/HostCodes.h"
#include "tests/rig/RawDevice.h"
#include "tests/rig/UsbPort.h"

namespace {

using namespace std::chrono_literals;
using rig::base64;
using rig::kUsb1;
using rig::RawDevice;
using rig::SerialDriver;
using terminal::LineSetting;
using terminal::SerialLine;
using Messages = std::vector<std::u16string>;

Messages base64Of(const std::vector<std::string>& messages) {
  Messages texts;
  for (const std::string& message : messages) texts.push_back(base64(message));
  return texts;
}

// A model of how a reader splits bytes that arrive all at once: a message is what precedes each end
// byte, less the rest of the suffix. What follows the last end byte is dropped.
std::vector<std::string> messagesOf(std::string bytes, const std::string& suffix) {
  if (suffix.empty()) return bytes.empty() ? std::vector<std::string>() : std::vector{bytes};
  std::vector<std::string> messages;
  for (std::size_t end; (end = bytes.find(suffix.back())) != bytes.npos; bytes.erase(0, end + 1)) {
    if (end == 0 || end + 1 < suffix.size()) continue;
    messages.push_back(bytes.substr(0, end + 1 - suffix.size()));
  }
  return messages;
}

struct Framing {
  const char* name;
  std::int32_t suffix;  // character code
  std::string bytes;
  std::vector<std::string> messages;
};

void PrintTo(const Framing& framing, std::ostream* out) { *out << framing.name; }

constexpr std::int32_t kNone = -1;
constexpr std::int32_t kZhe = 0x416;     // D0 96
constexpr std::int32_t kEuro = 0x20AC;   // E2 82 AC
constexpr std::int32_t kFace = 0x1F600;  // F0 9F 98 80

const Framing kFramings[] = {
    {"TwoInOneBurst", 13, "123\r456\r", {"123", "456"}},
    {"Unfinished", 13, "123", {}},
    {"UnfinishedAfterFinished", 13, "123\r456", {"123"}},
    {"LoneTerminator", 13, "\r", {}},
    {"TerminatorsAround", 13, "\r\r123\r\r\r456\r\r", {"123", "456"}},
    {"LineFeedIsData", 13, "123\n\r", {"123\n"}},
    {"LineFeed", 10, "123\r\n456\n", {"123\r", "456"}},
    {"AnyCharacter", 'Z', "123Z4Z", {"123", "4"}},
    {"Zero",
     0,
     std::string("12\0"
                 "3\0",
                 5),
     {"12", "3"}},
    {"NoSuffix", kNone, "123\r456\r\n", {"123\r456\r\n"}},
    {"TwoBytes", kZhe, "ABC\xD0\x96", {"ABC"}},
    {"TwoBytesNotCompared", kZhe, "ABCX\x96", {"ABC"}},
    {"TwoBytesOfNothing", kZhe, "\xD0\x96", {""}},
    {"TwoBytesLoneTerminator", kZhe, "\x96", {}},
    {"TwoBytesManyMessages",
     kZhe,
     "A\xD0\x96\x96"
     "B\xD0\x96",
     {"A", "B"}},
    {"ThreeBytes", kEuro, "ABC\xE2\x82\xAC", {"ABC"}},
    {"ThreeBytesShorterThanCut",
     kEuro,
     "X\xAC"
     "A\xE2\x82\xAC",
     {"A"}},
    {"ThreeBytesAsLongAsCut",
     kEuro,
     "XY\xAC"
     "A\xE2\x82\xAC",
     {"", "A"}},
    {"FourBytes", kFace, "ABC\xF0\x9F\x98\x80", {"ABC"}},
    {"FourBytesShorterThanCut", kFace, "XY\x80", {}},
    // A code that is not a character encodes to no bytes, so there is no suffix.
    {"NoCharacter", 0x110000, "1\r", {"1\r"}},
    {"Surrogate", 0xD800, "1\r", {"1\r"}},
    {"NegativeCode", -2, "1\r", {"1\r"}},
};

class SerialFraming : public testing::TestWithParam<Framing> {};

TEST_P(SerialFraming, OneBurst) {
  const Framing& framing = GetParam();
  RawDevice device(kUsb1, framing.suffix);
  EXPECT_EQ(device.burst(framing.bytes), base64Of(framing.messages));
  EXPECT_EQ(messagesOf(framing.bytes, rig::suffixBytes(framing.suffix)), framing.messages);
}

INSTANTIATE_TEST_SUITE_P(All, SerialFraming, testing::ValuesIn(kFramings),
                         [](const auto& test) { return test.param.name; });

TEST(SerialFramingTest, AnUnfinishedMessageIsDiscardedWithItsBurst) {
  RawDevice device(kUsb1, 13);
  EXPECT_EQ(device.burst("123"), Messages());
  EXPECT_EQ(device.burst("456\r"), base64Of({"456"}));
  EXPECT_EQ(device.burst("7\r89"), base64Of({"7"}));
  EXPECT_EQ(device.burst("\r0\r"), base64Of({"0"}));
}

TEST(SerialFramingTest, EachBurstIsAMessageWithoutASuffix) {
  RawDevice device(kUsb1, kNone);
  for (const std::string burst : {"1", "23\r\n", "\r", "456"}) {
    EXPECT_EQ(device.burst(burst), base64Of({burst}));
  }
}

TEST(SerialFramingTest, EveryByteOfABurstPasses) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  RawDevice device(kUsb1, kNone);
  EXPECT_EQ(device.burst(all), base64Of({all}));
}

// At 9600 baud a byte takes about a millisecond.
constexpr auto kSlow = 2ms;

const std::vector<std::string> kScans = {"4600051000057", "X", "]d201046000510000571712345",
                                         "%B4000001234567899^IVANOV/IVAN^2512?"};

TEST(SlowLine, FramedLosesNothing) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1, LineSetting::kFramed);
  driver.component.setParameter(u"OutputDataType", rig::kDataBase64);
  driver.open(kUsb1);
  for (const std::string& scan : kScans) line.sendSlowly(scan + "\r", kSlow);
  for (const std::string& scan : kScans) EXPECT_EQ(driver.event().data, base64(scan));
}

TEST(SlowLine, CookedWorksWithALineFeed) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1, LineSetting::kCooked);
  driver.component.setParameter(u"OutputDataType", rig::kDataBase64);
  driver.component.setParameter(u"Suffix", 10);
  driver.open(kUsb1);
  // The line turns the scanner's carriage return into a line feed.
  for (const std::string& scan : kScans) line.sendSlowly(scan + "\r", kSlow);
  for (const std::string& scan : kScans) EXPECT_EQ(driver.event().data, base64(scan));
}

TEST(SlowLine, CookedNeverEndsWithACarriageReturn) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1, LineSetting::kCooked);
  driver.plugIn(130);
  driver.open(kUsb1);
  driver.open(130);
  line.send("123\r456\r");
  driver.lines.back().send("end\r");
  const terminal::Event event = driver.event();
  EXPECT_EQ(event.source, u"InputDevice#2");
  EXPECT_EQ(event.data, u"end");
}

TEST(SlowLine, RawLosesAScanThatIsSplitIntoBursts) {
  RawDevice device(kUsb1, 13);
  for (const std::string& scan : kScans) {
    // Each byte is a burst of its own, so that nothing precedes the terminator in its burst.
    EXPECT_EQ(device.drip(scan + "\r", kSlow), Messages());
  }
  EXPECT_EQ(device.drip("12", kSlow), Messages());
  EXPECT_EQ(device.burst("34\r5"), base64Of({"34"}));
  EXPECT_EQ(device.burst("6\r"), base64Of({"6"}));
}

TEST(SlowLine, RawWithoutASuffixDeliversEachByte) {
  RawDevice device(kUsb1, kNone);
  EXPECT_EQ(device.drip("123\r", kSlow), base64Of({"1", "2", "3", "\r"}));
}

unsigned seed() {
  const char* const given = std::getenv("QUORVEL_SEED");
  const unsigned seed =
      given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
  std::cout << "QUORVEL_SEED=" << seed << std::endl;
  return seed;
}

// Bytes of every value, with bytes of the suffix over-represented.
std::string randomBytes(std::mt19937& random, const std::string& suffix) {
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  std::string bytes(1 + below(below(8) == 0 ? 3000 : 60), '\0');
  for (char& byte : bytes) {
    const bool fromSuffix = !suffix.empty() && below(6) == 0;
    byte = fromSuffix ? suffix[below(suffix.size())] : static_cast<char>(below(256));
  }
  return bytes;
}

TEST(SerialFramingTest, RandomBurstsAreFramedAsTheModelSays) {
  std::mt19937 random(seed());
  const std::int32_t codes[] = {kNone, 13,    10,    static_cast<std::int32_t>(random() % 256),
                                kZhe,  kEuro, kFace, static_cast<std::int32_t>(random() % 0xD800)};
  for (const std::int32_t code : codes) {
    const std::string suffix = rig::suffixBytes(code);
    RawDevice device(kUsb1, code);
    for (int burst = 0; burst < 60; ++burst) {
      const std::string bytes = randomBytes(random, suffix);
      ASSERT_EQ(device.burst(bytes), base64Of(messagesOf(bytes, suffix)))
          << "suffix " << code << ", burst " << burst;
    }
  }
}

TEST(SerialSizes, AFramedScanOf4095Bytes) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  driver.component.setParameter(u"OutputDataType", rig::kDataBase64);
  driver.open(kUsb1);
  std::string scan(4095, '\0');
  for (std::size_t i = 0; i < scan.size(); ++i) {
    const auto byte = static_cast<char>(i);
    scan[i] = byte == '\r' || byte == '\n' ? ' ' : byte;  // a framed line passes all others
  }
  line.send(scan + "\rend\r");
  EXPECT_EQ(driver.event().data, base64(scan));
  EXPECT_EQ(driver.event().data, base64("end"));
}

// The bytes of a base64 text.
std::string bytesOf(const std::u16string& text) {
  static const std::array<unsigned, 128> values = [] {
    std::array<unsigned, 128> all = {};
    for (unsigned value = 0; value < 64; ++value) {
      all.at(base64(std::string(1, static_cast<char>(value << 2)))[0]) = value;
    }
    return all;
  }();
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char16_t character : text) {
    if (character == u'=') break;
    bits = bits << 6 | values.at(character);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count);
  }
  return bytes;
}

TEST(SerialSizes, AHundredKilobytesWithoutASuffix) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1, LineSetting::kRaw);
  driver.component.setParameter(u"OutputDataType", rig::kDataBase64);
  driver.component.setParameter(u"Suffix", kNone);
  driver.open(kUsb1);
  std::mt19937 random(seed());
  std::string sent(100 * 1024, '\0');
  std::generate(sent.begin(), sent.end(), [&] { return static_cast<char>(random()); });
  line.send(sent);
  // The line may split the stream anywhere, but all of it comes, in order.
  std::string received;
  while (received.size() < sent.size()) received += bytesOf(driver.event().data);
  EXPECT_TRUE(received == sent);
}

}  // namespace
