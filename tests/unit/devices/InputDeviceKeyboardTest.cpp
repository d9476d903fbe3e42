#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "devices/InputDeviceKeyboard.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Patience.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"
#include "tests/unit/devices/Messages.h"

namespace quorvel {
namespace {

using rig::kPatience;
using terminal::Key;
using terminal::strokeFor;
using terminal::tap;
using terminal::type;

class InputDeviceKeyboardTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = std::make_unique<rig::XServer>(std::vector<std::string>{"Scanner", "Keys"});
    client_ = std::make_unique<rig::XClient>(server_->display());
  }
  static void TearDownTestSuite() {
    client_.reset();
    server_.reset();
  }

  InputDeviceKeyboardTest() { factory_.keyboardDevice = L"Scanner"; }

  static terminal::VirtualKeyboard& scanner() { return server_->keyboard(0); }

  // Waits until another client can grab the scanner.
  static void awaitRelease() {
    rig::XClient client(server_->display());
    const int scanner = client.device("Scanner");
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!client.grab(scanner)) {
      ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the scanner is still grabbed";
    }
  }

  static inline std::unique_ptr<rig::XServer> server_;
  // libXi sets up and clears away without a lock what its first and last client in a process need.
  // With this one there, the tests' others may come and go while the driver's do.
  static inline std::unique_ptr<rig::XClient> client_;
  const rig::ScopedVariable display_{"DISPLAY", server_->display()};
  InputDeviceKeyboardFactory factory_;
  Messages messages_;
};

TEST_F(InputDeviceKeyboardTest, DeliversTheBytesBeforeTheEnd) {
  const auto device = factory_.create(messages_.callback());
  ASSERT_TRUE(device);
  type(scanner(), "123\r");
  EXPECT_EQ(messages_.take(), L"123");
}

TEST_F(InputDeviceKeyboardTest, ListeningOnlyKeepsTheEndByte) {
  factory_.listenOnly = true;
  const auto device = factory_.create(messages_.callback());
  ASSERT_TRUE(device);
  type(scanner(), "123\r");
  EXPECT_EQ(messages_.take(), L"123\r");
}

TEST_F(InputDeviceKeyboardTest, ListeningOnlyNamesKeysWithoutText) {
  factory_.listenOnly = true;
  const auto device = factory_.create(messages_.callback());
  ASSERT_TRUE(device);
  for (const Key key : {Key::kF1, Key::kF8, Key::kInsert, Key::kDelete, Key::kPageUp,
                        Key::kRightAlt, Key::kKeypadEnter}) {
    tap(scanner(), key);
  }
  type(scanner(), "\r");
  EXPECT_EQ(messages_.take(), L"'F1'\x1D'INSERT''DELETE''PgUp''RIGHT_ALT''CR(Numpad)'\r");
}

TEST_F(InputDeviceKeyboardTest, ListeningOnlyLeavesTheKeysToEveryone) {
  factory_.listenOnly = true;
  Messages others;
  const auto device = factory_.create(messages_.callback());
  const auto other = factory_.create(others.callback());
  ASSERT_TRUE(device && other);
  rig::XClient client(server_->display());
  const Window window = client.openWindow();
  client.focus(window);
  type(scanner(), "1\r");
  EXPECT_EQ(messages_.take(), L"1\r");
  EXPECT_EQ(others.take(), L"1\r");
  EXPECT_EQ(client.takeKey(kPatience), strokeFor('1')->key);
  EXPECT_EQ(client.takeKey(kPatience), Key::kReturn);
  client.focus(PointerRoot);
}

TEST_F(InputDeviceKeyboardTest, ListeningOnlyDoesNotDisturbAGrab) {
  const auto grabbing = factory_.create(messages_.callback());
  factory_.listenOnly = true;
  Messages others;
  auto listening = factory_.create(others.callback());
  ASSERT_TRUE(grabbing && listening);
  listening.reset();
  type(scanner(), "1\r");
  EXPECT_EQ(messages_.take(), L"1");
  factory_.listenOnly = false;
  EXPECT_FALSE(factory_.create(others.callback()));
}

struct Suffix {
  std::wstring suffix;
  const char* typed;
  const wchar_t* message;
};

class KeyboardSuffixTest : public InputDeviceKeyboardTest,
                           public testing::WithParamInterface<Suffix> {};

TEST_P(KeyboardSuffixTest, TheLastByteEndsAMessage) {
  factory_.suffix = GetParam().suffix;
  const auto device = factory_.create(messages_.callback());
  ASSERT_TRUE(device);
  type(scanner(), GetParam().typed);
  EXPECT_EQ(messages_.take(), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Suffixes, KeyboardSuffixTest,
                         testing::Values(Suffix{L"", "1\r", L"1"}, Suffix{L"\r", "1\r", L"1"},
                                         Suffix{L"#", "1\r#", L"1\r"}, Suffix{L"##", "1#", L"1"},
                                         // Only the first ten bytes of a suffix count.
                                         Suffix{L"0123456789#", "1#9", L"1#"},
                                         // A character outside the host's encoding leaves the
                                         // default, the carriage return.
                                         Suffix{L"\x0416", "1\r", L"1"}));

TEST_F(InputDeviceKeyboardTest, OnlyTheLowByteOfEachNameCharacterCounts) {
  factory_.keyboardDevice =
      L"\x0153"
      L"canner";
  EXPECT_TRUE(factory_.create(messages_.callback()));
}

TEST_F(InputDeviceKeyboardTest, TheNameEndsAtAZero) {
  factory_.keyboardDevice = std::wstring(L"Scanner\0more", 12);
  EXPECT_TRUE(factory_.create(messages_.callback()));
}

TEST_F(InputDeviceKeyboardTest, AnExceptionFromTheCallbackLosesOneMessage) {
  const DataCallback deliver = messages_.callback();
  bool thrown = false;
  const auto device = factory_.create([&](const std::wstring& data) {
    if (!std::exchange(thrown, true)) throw std::runtime_error("the host is not ready");
    deliver(data);
  });
  ASSERT_TRUE(device);
  type(scanner(), "1\r2\r");
  EXPECT_EQ(messages_.take(), L"2");
}

TEST_F(InputDeviceKeyboardTest, WithoutACallbackKeysAreReadAndDropped) {
  const auto device = factory_.create(DataCallback());
  ASSERT_TRUE(device);
  type(scanner(), "1\r");
}

TEST_F(InputDeviceKeyboardTest, CreateReturnsNullWhenTheDeviceCannotBeOpened) {
  factory_.keyboardDevice = L"No such scanner";
  EXPECT_FALSE(factory_.create(messages_.callback()));
  factory_.keyboardDevice = L"";
  EXPECT_FALSE(factory_.create(messages_.callback()));
  const rig::ScopedVariable display("DISPLAY", std::nullopt);
  factory_.keyboardDevice = L"Scanner";
  EXPECT_FALSE(factory_.create(messages_.callback()));
}

TEST_F(InputDeviceKeyboardTest, MayBeDestroyedInsideItsCallback) {
  const std::size_t threads = rig::settledThreadCount();
  const DataCallback deliver = messages_.callback();
  std::unique_ptr<InputDevice> device;
  device = factory_.create([&](const std::wstring& data) {
    device.reset();
    deliver(data);
  });
  ASSERT_TRUE(device);
  type(scanner(), "1\r2\r");
  EXPECT_EQ(messages_.take(), L"1");
  awaitRelease();
  // The keyboard is released inside the callback, which may still be running.
  rig::awaitThreadCount(threads);
  // Messages that were pending when the device was destroyed are not delivered.
  EXPECT_EQ(messages_.count(), 0U);
}

TEST_F(InputDeviceKeyboardTest, TheCallbackMayEndItsThread) {
  const DataCallback deliver = messages_.callback();
  auto device = factory_.create([&](const std::wstring& data) {
    deliver(data);
    pthread_exit(nullptr);
  });
  ASSERT_TRUE(device);
  type(scanner(), "1\r");
  EXPECT_EQ(messages_.take(), L"1");
  awaitRelease();
  device.reset();
}

TEST_F(InputDeviceKeyboardTest, TheCallbackRunsWithTheSignalMaskOfTheOpeningThread) {
  sigset_t openers, before, insideCallback;
  sigemptyset(&openers);
  sigaddset(&openers, SIGUSR2);
  sigaddset(&openers, SIGSEGV);
  pthread_sigmask(SIG_SETMASK, &openers, &before);
  const DataCallback deliver = messages_.callback();
  const auto device = factory_.create([&](const std::wstring& data) {
    pthread_sigmask(SIG_SETMASK, nullptr, &insideCallback);
    deliver(data);
  });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  ASSERT_TRUE(device);
  type(scanner(), "1\r");
  messages_.take();
  EXPECT_EQ(sigismember(&insideCallback, SIGUSR2), 1);
  EXPECT_EQ(sigismember(&insideCallback, SIGUSR1), 0);
  EXPECT_EQ(sigismember(&insideCallback, SIGPIPE), 0);
  EXPECT_EQ(sigismember(&insideCallback, SIGSEGV), 0) << "faults are never blocked";
}

TEST_F(InputDeviceKeyboardTest, MayBeDestroyedAtOnce) {
  for (int i = 0; i < 50; ++i) EXPECT_TRUE(factory_.create(messages_.callback()));
}

}  // namespace
}  // namespace quorvel
