#include <gtest/gtest.h>

#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <future>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/HostDoubles.h"
#include "tests/rig/Patience.h"
#include "tests/rig/UsbPort.h"
#include "tests/rig/XServer.h"
#include "tools/common/KeyTyping.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::kUsb1;

constexpr std::uint8_t kMask = 0x80;

// A text that this program holds only in a masked form, so that a search of the program's memory
// does not find it there.
template <std::size_t size>
struct Masked {
  std::array<std::uint8_t, size> bytes;

  char at(std::size_t i) const { return static_cast<char>(bytes[i] ^ kMask); }
};

template <std::size_t size>
consteval auto masked(const char (&text)[size]) {
  Masked<size - 1> result{};
  for (std::size_t i = 0; i < size - 1; ++i) {
    result.bytes[i] = static_cast<std::uint8_t>(text[i] ^ kMask);
  }
  return result;
}

constexpr auto kTrack = masked(";6395000123456789=30121010000012345678?");
// Parts of the track and of its other forms that stand nowhere else.
constexpr auto kPart = masked("0123456789=3012101");
constexpr auto kBase64Part = masked("MDAxMjM0NTY3ODk9MzAxMjEw");

// Whether the memory from `at` on holds the text, in characters of this type.
template <typename Character, std::size_t size>
bool standsAt(const std::uint8_t* at, const Masked<size>& text) {
  for (std::size_t i = 0; i < size; ++i) {
    Character character;
    std::memcpy(&character, at + i * sizeof character, sizeof character);
    if (character != static_cast<Character>(text.at(i))) return false;
  }
  return true;
}

template <std::size_t size>
std::size_t copiesBetween(const std::uint8_t* from, const std::uint8_t* to,
                          const Masked<size>& text) {
  std::size_t copies = 0;
  const auto first = static_cast<std::uint8_t>(text.at(0));
  for (const std::uint8_t* at = from; at < to; ++at) {
    at =
        static_cast<const std::uint8_t*>(std::memchr(at, first, static_cast<std::size_t>(to - at)));
    if (!at) break;
    const auto left = static_cast<std::size_t>(to - at);
    copies += left >= size && standsAt<char>(at, text);
    copies += left >= size * 2 && standsAt<char16_t>(at, text);
    copies += left >= size * 4 && standsAt<char32_t>(at, text);
  }
  return copies;
}

// How often the track, or its base64 text, stands in the memory that this process may write.
std::size_t copiesInMemory() {
  std::size_t copies = 0;
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t from, to;
    char permissions[5];
    if (std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR " %4s", &from, &to, permissions) != 3) {
      throw std::runtime_error("not understood: " + line);
    }
    if (std::string_view(permissions) != "rw-p") continue;
    const auto* const begin = reinterpret_cast<const std::uint8_t*>(from);
    const auto* const end = reinterpret_cast<const std::uint8_t*>(to);
    copies += copiesBetween(begin, end, kPart) + copiesBetween(begin, end, kBase64Part);
  }
  return copies;
}

// A host that keeps nothing of an event.
class ForgetfulHost : public rig::FakeConnection {
 public:
  bool ExternalEvent(WCHAR_T*, WCHAR_T*, WCHAR_T*) override {
    copies_.set_value(copiesInMemory());
    return true;
  }

  // How often the track was in memory at the event.
  std::size_t copiesAtEvent() {
    std::future<std::size_t> copies = copies_.get_future();
    if (copies.wait_for(rig::kPatience) != std::future_status::ready) {
      throw std::runtime_error("no event came");
    }
    return copies.get();
  }

 private:
  std::promise<std::size_t> copies_;
};

// A component that is destroyed after one swipe.
class TrackData : public testing::Test {
 protected:
  TrackData() {
    driver_->component.object().Init(&host_);
    driver_->component.setParameter(u"EquipmentType", u"СчитывательМагнитныхКарт");
  }

  void expectNothingLeftOfTheScan() {
    EXPECT_GT(host_.copiesAtEvent(), 0U) << "the search finds nothing";
    driver_.reset();
    EXPECT_EQ(copiesInMemory(), 0U);
  }

  ForgetfulHost host_;
  std::optional<rig::Driver> driver_{u"CardReaderDevice"};
};

class SerialTrackData : public TrackData, public testing::WithParamInterface<std::int32_t> {};

TEST_P(SerialTrackData, IsOverwritten) {
  terminal::SerialLine line(terminal::LineSetting::kFramed);
  line.link("/dev/ttyUSB0");
  driver_->component.setParameter(u"OutputDataType", GetParam());
  driver_->openPort(kUsb1);
  for (std::size_t i = 0; i < kTrack.bytes.size(); ++i) {
    const char character = kTrack.at(i);
    line.send({&character, 1});
  }
  line.send("\r");
  expectNothingLeftOfTheScan();
}

INSTANTIATE_TEST_SUITE_P(EachOutputDataType, SerialTrackData, testing::Values(0, 1, 2));

TEST_F(TrackData, OfAKeyboardIsOverwritten) {
  rig::XServer server({"Reader"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  driver_->openKeyboard(u"Reader");
  for (std::size_t i = 0; i < kTrack.bytes.size(); ++i) {
    terminal::type(server.keyboard(0), {std::array{kTrack.at(i)}.data(), 1});
  }
  terminal::type(server.keyboard(0), "\r");
  expectNothingLeftOfTheScan();
}

}  // namespace
