// Scans from keyboards, through the built library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/HostCodes.h"
#include "tests/rig/KeysLookedAt.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"
#include "tools/common/HostText.h"

namespace {

using rig::Driver;
using rig::kPatience;
using rig::XClient;
using terminal::Key;
using terminal::strokeFor;
using terminal::tap;
using terminal::tapWith;
using terminal::toHostText;
using terminal::type;

constexpr char kGroupSeparator = 29;

// The keyboards of the server, in its order.
enum Keyboard : std::size_t { kScanner, kForeignName, kTwin, kLaterTwin, kUsersKeyboard };
const std::vector<std::string> kNames = {"Scanner", "AT&T <Сканер>", "Twin&", "Twin<", "Keys"};

class KeyboardTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = std::make_unique<rig::XServer>(kNames);
    setenv("DISPLAY", server_->display().c_str(), 1);
  }
  static void TearDownTestSuite() { server_.reset(); }

  void TearDown() override {
    XClient(server_->display()).focus(PointerRoot);
    if (HasFailure()) std::cerr << server_->log();
  }

  static terminal::VirtualKeyboard& keyboard(Keyboard which) { return server_->keyboard(which); }
  static terminal::VirtualKeyboard& scanner() { return keyboard(kScanner); }

  static inline std::unique_ptr<rig::XServer> server_;
};

TEST_F(KeyboardTest, KeysUpToTheReturnKeyBecomeOneEvent) {
  Driver driver;
  driver.openKeyboard(u"Scanner");
  type(scanner(), "123\r");
  const terminal::Event event = driver.event();
  EXPECT_EQ(event.source, u"InputDevice#1");
  EXPECT_EQ(event.name, u"Штрихкод");
  EXPECT_EQ(event.data, u"123");
}

TEST_F(KeyboardTest, EveryPrintableCharacterIsRead) {
  std::string text;
  for (char character = ' '; character <= '~'; ++character) text += character;
  Driver driver;
  driver.openKeyboard(u"Scanner");
  type(scanner(), text + "\r");
  EXPECT_EQ(driver.event().data, toHostText(text));
}

TEST_F(KeyboardTest, TheRawBytesTravelAsBase64) {
  Driver driver;
  driver.component.setParameter(u"OutputDataType", rig::kDataBase64);
  driver.openKeyboard(u"Scanner");
  type(scanner(), "ab\r");
  EXPECT_EQ(driver.event().data, u"YWI=");
}

TEST_F(KeyboardTest, ReturnAloneIsAnEmptyMessage) {
  Driver driver;
  driver.component.setParameter(u"OutputDataType", rig::kDataBase64);
  driver.openKeyboard(u"Scanner");
  type(scanner(), "\r1\r");
  EXPECT_EQ(driver.event().data, u"");
  EXPECT_EQ(driver.event().data, u"MQ==");
}

TEST_F(KeyboardTest, ControlWithTheRightBracketAndF8SeparateGroups) {
  Driver driver;
  driver.component.setParameter(u"GSSymbolKey", -1);
  driver.openKeyboard(u"Scanner");
  type(scanner(),
       "1\x1D"
       "2");
  tap(scanner(), Key::kF8);
  type(scanner(), "3]\r");
  EXPECT_EQ(driver.event().data,
            u"1\x1D"
            u"2\x1D"
            u"3]");
}

TEST_F(KeyboardTest, TheChosenKeySeparatesGroupsToo) {
  constexpr std::int32_t kInsertKey = 12;
  Driver driver;
  driver.component.setParameter(u"GSSymbolKey", kInsertKey);
  driver.openKeyboard(u"Scanner");
  type(scanner(), "1");
  tap(scanner(), Key::kInsert);
  type(scanner(), "2");
  tap(scanner(), Key::kF8);
  type(scanner(), "3\r");
  EXPECT_EQ(driver.event().data,
            u"1\x1D"
            u"2\x1D"
            u"3");
}

TEST_F(KeyboardTest, KeysWithoutTextAreSkipped) {
  Driver driver;
  driver.openKeyboard(u"Scanner");
  type(scanner(), "1");
  for (const Key key : {Key::kF1, Key::kF12, Key::kHome, Key::kInsert, Key::kRightAlt}) {
    tap(scanner(), key);
  }
  type(scanner(), "2\r");
  EXPECT_EQ(driver.event().data, u"12");
}

TEST_F(KeyboardTest, AnotherSuffixEndsAMessage) {
  Driver driver;
  driver.component.setParameter(u"Suffix", '\t');
  driver.component.setParameter(u"OutputDataType", rig::kDataHumanReadable);
  driver.openKeyboard(u"Scanner");
  type(scanner(), "1\r2\t");
  EXPECT_EQ(driver.event().data, u"1(013)2");
}

TEST_F(KeyboardTest, WithoutASuffixTheReturnKeyEndsAMessage) {
  Driver driver;
  driver.component.setParameter(u"Suffix", -1);
  driver.openKeyboard(u"Scanner");
  type(scanner(), "1");
  tap(scanner(), Key::kKeypadEnter);
  EXPECT_EQ(driver.event().data, u"1");
}

TEST_F(KeyboardTest, CapsLockChangesNothing) {
  Driver driver;
  driver.openKeyboard(u"Scanner");
  tap(scanner(), Key::kCapsLock);
  type(scanner(), "aB1\r");
  tap(scanner(), Key::kCapsLock);
  EXPECT_EQ(driver.event().data, u"aB1");
}

TEST_F(KeyboardTest, ANameIsFoundAsTheFormShowsIt) {
  Driver driver;
  driver.openKeyboard(u"AT T               ");
  type(keyboard(kForeignName), "7\r");
  EXPECT_EQ(driver.event().data, u"7");
}

TEST_F(KeyboardTest, TheLaterOfTwoDevicesWithOneNameIsRead) {
  Driver driver;
  driver.openKeyboard(u"Twin ");
  type(keyboard(kTwin), "1\r");
  type(keyboard(kLaterTwin), "2\r");
  EXPECT_EQ(driver.event().data, u"2");
}

TEST_F(KeyboardTest, AMessageMayTakeSeconds) {
  Driver driver;
  driver.openKeyboard(u"Scanner");
  rig::countKeysLookedAt();
  type(scanner(), "12");
  ASSERT_TRUE(rig::awaitKeysLookedAt(4));
  // Nothing to await here: the test is that elapsed time does not matter.
  std::this_thread::sleep_for(std::chrono::seconds(3));
  type(scanner(), "3\r");
  EXPECT_EQ(driver.event().data, u"123");
}

TEST_F(KeyboardTest, TwoDevicesAreReadAtOnce) {
  Driver driver;
  const std::u16string first = driver.openKeyboard(u"Scanner");
  const std::u16string second = driver.openKeyboard(u"Keys");
  for (int i = 0; i < 3; ++i) {
    type(scanner(), "1");
    type(keyboard(kUsersKeyboard), "2");
  }
  type(scanner(), "\r");
  const terminal::Event one = driver.event();
  type(keyboard(kUsersKeyboard), "\r");
  const terminal::Event other = driver.event();
  EXPECT_EQ(one.source, first);
  EXPECT_EQ(one.data, u"111");
  EXPECT_EQ(other.source, second);
  EXPECT_EQ(other.data, u"222");
}

TEST_F(KeyboardTest, OnlyTheGrabbedKeyboardIsTakenFromOthers) {
  XClient other(server_->display());
  const Window window = other.openWindow();
  other.focus(window);
  Driver driver;
  driver.openKeyboard(u"Scanner");
  type(scanner(), "123\r");
  EXPECT_EQ(driver.event().data, u"123");
  type(keyboard(kUsersKeyboard), "x");
  EXPECT_EQ(other.takeKey(kPatience), strokeFor('x')->key);
  type(scanner(), "4\r");
  EXPECT_EQ(driver.event().data, u"4");
}

TEST_F(KeyboardTest, ClosingGivesTheKeyboardBack) {
  XClient other(server_->display());
  const int device = other.device("Scanner");
  Driver driver;
  const std::u16string id = driver.openKeyboard(u"Scanner");
  EXPECT_FALSE(other.grab(device));
  EXPECT_TRUE(driver.component.close(id));
  EXPECT_TRUE(other.grab(device));
}

TEST_F(KeyboardTest, AKeyboardThatSomeoneHasGrabbedCannotBeOpened) {
  XClient other(server_->display());
  ASSERT_TRUE(other.grab(other.device("Scanner")));
  Driver driver;
  EXPECT_THROW(driver.openKeyboard(u"Scanner"), std::runtime_error);
}

TEST_F(KeyboardTest, AnUnknownNameCannotBeOpened) {
  Driver driver;
  const std::size_t threads = rig::threadCount();
  const std::size_t descriptors = rig::descriptorCount();
  EXPECT_THROW(driver.openKeyboard(u"No such scanner"), std::runtime_error);
  EXPECT_THROW(driver.openKeyboard(u""), std::runtime_error);
  EXPECT_EQ(rig::threadCount(), threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

TEST_F(KeyboardTest, WithoutADisplayNothingCanBeOpened) {
  setenv("DISPLAY", ":no-such", 1);
  Driver driver;
  EXPECT_THROW(driver.openKeyboard(u"Scanner"), std::runtime_error);
  setenv("DISPLAY", server_->display().c_str(), 1);
}

// The focus decides whether a key counts.
class KeyboardFocusTest : public KeyboardTest {
 protected:
  void SetUp() override { driver_.openKeyboard(u"Scanner"); }

  // Scans, and waits until the driver has handled the last key of the scan.
  void expectRead() {
    rig::countKeysLookedAt();
    type(scanner(), "0\r");
    EXPECT_EQ(driver_.event().data, u"0");
    EXPECT_TRUE(rig::awaitKeysLookedAt(4));
  }

  // Whether keys typed now are read. The driver handles them before the focus moves on.
  bool isRead() {
    rig::countKeysLookedAt();
    type(scanner(), "1");
    EXPECT_TRUE(rig::awaitKeysLookedAt(2));
    client_.focus(PointerRoot);
    type(scanner(), "\r");
    const std::u16string data = driver_.event().data;
    EXPECT_TRUE(data == u"1" || data == u"") << terminal::toUtf8(data);
    return data == u"1";
  }

  static constexpr pid_t kAnotherProcess = 1;

  XClient client_{server_->display()};
  Driver driver_;
};

TEST_F(KeyboardFocusTest, OnNoWindow) { EXPECT_TRUE(isRead()); }

TEST_F(KeyboardFocusTest, OnAWindowOfAnotherProcess) {
  const Window frame = client_.openWindow();
  client_.setProcess(frame, kAnotherProcess);
  client_.focus(client_.openWindow(frame));
  EXPECT_FALSE(isRead());
}

TEST_F(KeyboardFocusTest, OnAWindowOfThisProcess) {
  const Window frame = client_.openWindow();
  client_.setProcess(frame, getpid());
  client_.focus(client_.openWindow(frame));
  EXPECT_TRUE(isRead());
}

TEST_F(KeyboardFocusTest, OnAWindowOfNoKnownProcess) {
  client_.focus(client_.openWindow(client_.openWindow()));
  EXPECT_TRUE(isRead());
}

TEST_F(KeyboardFocusTest, DeepInAWindowOfAnotherProcess) {
  const Window outermost = client_.openWindow();
  client_.setProcess(outermost, kAnotherProcess);
  Window window = outermost;
  for (int depth = 0; depth < 5; ++depth) window = client_.openWindow(window);
  client_.focus(window);
  EXPECT_FALSE(isRead());
}

TEST_F(KeyboardFocusTest, TheNearestWindowAboveDecides) {
  const Window outer = client_.openWindow();
  client_.setProcess(outer, kAnotherProcess);
  const Window inner = client_.openWindow(outer);
  client_.setProcess(inner, getpid());
  client_.focus(client_.openWindow(inner));
  EXPECT_TRUE(isRead());
}

TEST_F(KeyboardFocusTest, TheFocusWindowItselfDoesNotCount) {
  const Window window = client_.openWindow();
  client_.setProcess(window, kAnotherProcess);
  client_.focus(window);
  EXPECT_TRUE(isRead());
}

TEST_F(KeyboardFocusTest, OnAWindowThatPassesToAnotherProcess) {
  const Window frame = client_.openWindow();
  client_.focus(client_.openWindow(frame));
  expectRead();
  client_.setProcess(frame, kAnotherProcess);
  EXPECT_FALSE(isRead());
}

TEST_F(KeyboardFocusTest, OnAWindowThatMovesIntoOneOfAnotherProcess) {
  const Window frame = client_.openWindow();
  client_.setProcess(frame, kAnotherProcess);
  const Window middle = client_.openWindow();
  const Window inner = client_.openWindow(middle);
  client_.focus(inner);
  expectRead();
  XReparentWindow(client_.get(), middle, frame, 0, 0);
  client_.focus(inner);
  EXPECT_FALSE(isRead());
}

TEST_F(KeyboardFocusTest, OnAWindowThatClosesAndLeavesTheFocusToItsParent) {
  const Window outer = client_.openWindow();
  client_.setProcess(outer, kAnotherProcess);
  const Window inner = client_.openWindow(outer);
  const Window innermost = client_.openWindow(inner);
  client_.setProcess(inner, getpid());
  client_.focus(innermost, RevertToParent);
  expectRead();
  client_.closeWindow(innermost);
  EXPECT_FALSE(isRead());
}

TEST_F(KeyboardTest, ManyOpeningsAndClosingsLeaveNothingBehind) {
  Driver driver;
  const auto cycle = [&driver] {
    const std::u16string id = driver.openKeyboard(u"Scanner");
    type(scanner(), "1\r");
    EXPECT_EQ(driver.event().data, u"1");
    EXPECT_TRUE(driver.component.close(id));
  };
  // Warm up: libraries allocate caches once.
  for (int i = 0; i < 20; ++i) cycle();
  const std::size_t threads = rig::threadCount();
  const std::size_t descriptors = rig::descriptorCount();
  const std::size_t bytes = rig::heapBytes();
  for (int i = 0; i < 200; ++i) cycle();
  EXPECT_EQ(rig::threadCount(), threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
  EXPECT_LE(rig::heapBytes(), bytes + 8192);
}

}  // namespace
