#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devices/KeyboardMessage.h"
#include "devices/XConnection.h"
#include "devices/XQueries.h"
#include "tests/rig/Environment.h"
#include "tests/rig/FailingAllocation.h"
#include "tests/rig/XServer.h"
#include "tools/common/KeyTyping.h"

namespace quorvel {
namespace {

using terminal::Key;
using terminal::strokeFor;

class KeyboardMessageTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = std::make_unique<rig::XServer>(std::vector{std::string("Keys")});
  }
  static void TearDownTestSuite() { server_.reset(); }

  std::optional<std::string> press(KeyboardMessage& message, Key key, int modifiers = 0) {
    XIDeviceEvent event = {};
    event.evtype = XI_KeyPress;
    event.detail = static_cast<int>(key);
    event.mods.base = modifiers;
    return message.add(event);
  }

  // Presses the keys of the text; only its last character may end a message.
  std::optional<std::string> type(KeyboardMessage& message, std::string_view text) {
    std::optional<std::string> ended;
    for (const char character : text) {
      EXPECT_FALSE(ended);
      ended = press(message, strokeFor(character)->key);
    }
    return ended;
  }

  static inline std::unique_ptr<rig::XServer> server_;
  const rig::ScopedVariable display_{"DISPLAY", server_->display()};
  const XConnection connection_ = XConnection::open();
  InputDeviceKeyboardFactory factory_;
  KeyboardMessage message_{factory_, connection_};
};

constexpr Key kKeyWithoutSymbol{93};
constexpr Key kKeypadEnter{104};
constexpr int kControlAndShift = ControlMask | ShiftMask;

TEST_F(KeyboardMessageTest, SkipsAKeyWithoutASymbol) {
  int symbols = 0;
  const XOwned<KeySym> symbol(
      XGetKeyboardMapping(connection_.get(), static_cast<KeyCode>(kKeyWithoutSymbol), 1, &symbols));
  ASSERT_EQ(*symbol, KeySym{NoSymbol});
  type(message_, "1");
  EXPECT_EQ(press(message_, kKeyWithoutSymbol), std::nullopt);
  EXPECT_EQ(type(message_, "2\r"), "12");
}

TEST_F(KeyboardMessageTest, KeepsTheZeroOfControlWithAt) {
  type(message_, "1");
  press(message_, strokeFor('@')->key, kControlAndShift);
  EXPECT_EQ(type(message_, "2\r"), std::string("1\0"
                                               "2",
                                               3));
}

TEST_F(KeyboardMessageTest, WithoutMemoryLosesExactlyOneMessage) {
  const std::string beginning = "0123456789abcdef0123456789abcdef";
  type(message_, beginning);
  std::size_t typed = 0;
  {
    const rig::FailingAllocation failing;
    // Enough keys that the message has to allocate.
    for (; typed < 100; ++typed) press(message_, strokeFor('x')->key);
  }
  EXPECT_EQ(type(message_, "rest\r"), std::nullopt);
  EXPECT_EQ(type(message_, "next\r"), "next");
}

TEST_F(KeyboardMessageTest, LosesAMessageWhenThereIsNoMemoryForItsEndByte) {
  factory_.listenOnly = true;
  for (std::size_t length = 1; length < 40; ++length) {
    KeyboardMessage message(factory_, connection_);
    const std::string text(length, 'x');
    type(message, text);
    std::optional<std::string> ended;
    {
      const rig::FailingAllocation failing;
      ended = press(message, Key::kReturn);
    }
    EXPECT_EQ(ended.value_or(text + "\r"), text + "\r");
    EXPECT_EQ(type(message, "next\r"), "next\r");
  }
}

TEST_F(KeyboardMessageTest, DropsAMessageOfMoreThanAMebibyteUpToItsEnd) {
  factory_.listenOnly = true;
  KeyboardMessage message(factory_, connection_);
  constexpr std::string_view kName = "'CR(Numpad)'";  // what the key stands for
  const auto typeBytes = [&](std::size_t count) {
    for (std::size_t i = 0; i < count / kName.size(); ++i) press(message, kKeypadEnter);
    for (std::size_t i = 0; i < count % kName.size(); ++i) press(message, strokeFor('x')->key);
  };
  constexpr std::size_t kLongest = 1 << 20;
  typeBytes(kLongest - 1);  // and the end byte, which listening keeps
  const std::optional<std::string> longest = press(message, Key::kReturn);
  ASSERT_TRUE(longest);
  EXPECT_EQ(longest->size(), kLongest);
  typeBytes(kLongest);
  EXPECT_EQ(press(message, Key::kReturn), std::nullopt);
  typeBytes(kLongest + kName.size());
  EXPECT_EQ(press(message, Key::kReturn), std::nullopt);
  EXPECT_EQ(type(message, "next\r"), "next\r");
}

TEST_F(KeyboardMessageTest, StartsANewMessageAfterADrop) {
  type(message_, "1");
  message_.drop();
  EXPECT_EQ(type(message_, "2\r"), "2");
  type(message_, "3");
  message_.dropToEnd();
  message_.drop();
  EXPECT_EQ(type(message_, "4\r"), "4");
}

TEST_F(KeyboardMessageTest, DropsOnlyUpToTheEndByte) {
  type(message_, "1");
  message_.dropToEnd();
  EXPECT_EQ(type(message_, "2\r"), std::nullopt);
  EXPECT_EQ(type(message_, "3\r"), "3");
}

}  // namespace
}  // namespace quorvel
