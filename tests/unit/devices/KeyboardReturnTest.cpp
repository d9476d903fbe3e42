// Keyboards that are switched off and on, or unplugged and plugged in, while they are open. Each
// master of the X server brings a keyboard with it, so that adding and removing masters plugs
// keyboards in and out.
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "devices/InputDeviceFactories.h"
#include "tests/rig/Environment.h"
#include "tests/rig/KeysLookedAt.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"
#include "tests/unit/devices/Messages.h"

namespace quorvel {
namespace {

using terminal::type;

constexpr std::chrono::milliseconds kMoment{50};

std::ptrdiff_t entriesOf(const char* folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

class KeyboardReturnTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = std::make_unique<rig::XServer>(std::vector<std::string>{"Scanner", "Keys"});
  }
  static void TearDownTestSuite() { server_.reset(); }

  KeyboardReturnTest() { factory_.keyboardDevice = L"Plugged XTEST keyboard"; }
  ~KeyboardReturnTest() override {
    device_.reset();
    while (!client_.devices("Plugged keyboard").empty()) unplug();
  }

  void open() {
    device_ = factory_.create(messages_.callback());
    ASSERT_TRUE(device_);
  }

  void openScanner() {
    factory_.keyboardDevice = L"Scanner";
    open();
  }

  terminal::VirtualKeyboard& scanner() { return server_->keyboard(0); }
  void switchOffAndOn() {
    const int scanner = client_.device("Scanner");
    client_.setEnabled(scanner, false);
    client_.setEnabled(scanner, true);
    server_->reconnectKeyboard(0);
  }

  void plug(const std::string& name = "Plugged") { client_.addMaster(name); }
  void unplug(const std::string& name = "Plugged") {
    client_.removeMaster(client_.device(name + " keyboard"));
  }
  // Adds a keyboard that another client grabs before anyone else can.
  void plugAndGrab() {
    XGrabServer(client_.get());
    plug();
    ASSERT_TRUE(client_.grab(device()));
    XUngrabServer(client_.get());
    XSync(client_.get(), False);
  }

  // Waits until the driver has grabbed the device.
  void awaitGrab(int device) {
    const auto deadline = std::chrono::steady_clock::now() + rig::kPatience;
    while (client_.grab(device)) {
      client_.ungrab(device);
      ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the driver leaves it alone";
    }
  }

  int device() { return client_.device("Plugged XTEST keyboard"); }
  terminal::VirtualKeyboard& keyboard(const std::string& name = "Plugged") {
    return client_.xTestKeyboardOf(name);
  }

  // Scans until a scan arrives: there is no other sign that the driver has the keyboard again.
  void awaitScans(terminal::VirtualKeyboard& keyboard) {
    const auto deadline = std::chrono::steady_clock::now() + rig::kPatience;
    std::optional<std::wstring> message;
    while (!message) {
      ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "no scan arrives";
      type(keyboard, "0\r");
      message = messages_.take(kMoment);
    }
    // Take the scans still on their way, up to one that differs from them. The driver may have got
    // the keyboard in the middle of a scan.
    type(keyboard, "9\r");
    while (message != L"9") {
      ASSERT_TRUE(message == L"0" || message == L"");
      message = messages_.take();
    }
  }

  static inline std::unique_ptr<rig::XServer> server_;
  const rig::ScopedVariable display_{"DISPLAY", server_->display()};
  rig::XClient client_{server_->display()};
  InputDeviceKeyboardFactory factory_;
  Messages messages_;
  std::unique_ptr<InputDevice> device_;
};

TEST_F(KeyboardReturnTest, AKeyboardThatWasSwitchedOffDropsWhatItHadTyped) {
  openScanner();
  rig::countKeysLookedAt();
  type(scanner(), "12");
  ASSERT_TRUE(rig::awaitKeysLookedAt(4));
  switchOffAndOn();
  type(scanner(), "3\r");
  EXPECT_EQ(messages_.take(), L"3");
}

TEST_F(KeyboardReturnTest, AKeyboardThatWasSwitchedOffIsStillGrabbed) {
  openScanner();
  for (int i = 0; i < 3; ++i) {
    switchOffAndOn();
    EXPECT_FALSE(client_.grab(client_.device("Scanner")));
    type(scanner(), "3\r");
    EXPECT_EQ(messages_.take(), L"3");
  }
}

TEST_F(KeyboardReturnTest, OtherKeyboardsComeAndGoWithoutAnEffect) {
  openScanner();
  rig::countKeysLookedAt();
  type(scanner(), "1");
  ASSERT_TRUE(rig::awaitKeysLookedAt(2));
  plug();
  client_.setEnabled(client_.device("Keys"), false);
  client_.setEnabled(client_.device("Keys"), true);
  unplug();
  type(scanner(), "2\r");
  EXPECT_EQ(messages_.take(), L"12");
}

TEST_F(KeyboardReturnTest, AKeyboardIsReadAgainWhenItIsPluggedIn) {
  plug();
  open();
  type(keyboard(), "1\r");
  EXPECT_EQ(messages_.take(), L"1");
  rig::countKeysLookedAt();
  type(keyboard(), "12");
  ASSERT_TRUE(rig::awaitKeysLookedAt(4));
  unplug();
  plug();
  awaitScans(keyboard());
  EXPECT_FALSE(client_.grab(device()));
}

TEST_F(KeyboardReturnTest, ListeningGoesOnWhenTheKeyboardIsPluggedIn) {
  factory_.listenOnly = true;
  factory_.suffix = L"\r";
  plug();
  open();
  unplug();
  plug();
  std::optional<std::wstring> message;
  while (!message) {
    type(keyboard(), "0\r");
    message = messages_.take(kMoment);
  }
  EXPECT_TRUE(message == L"0\r" || message == L"\r");
  EXPECT_TRUE(client_.grab(device())) << "listening leaves the keyboard to others";
}

TEST_F(KeyboardReturnTest, AnotherKeyboardThatGetsItsNumberIsNotRead) {
  factory_.listenOnly = true;
  plug();
  const int number = device();
  open();
  unplug();
  plug("Other");
  ASSERT_EQ(client_.device("Other XTEST keyboard"), number);
  rig::countKeysLookedAt();
  type(keyboard("Other"), "1\r");
  unplug("Other");
  plug();
  std::optional<std::wstring> message;
  while (!message) {
    type(keyboard(), "0\r");
    message = messages_.take(kMoment);
  }
  EXPECT_TRUE(message == L"0\r" || message == L"\r");
}

TEST_F(KeyboardReturnTest, AKeyboardThatAnotherClientGrabsFirstIsReadOnceItIsReleased) {
  plug();
  open();
  unplug();
  plugAndGrab();
  type(keyboard(), "1\r");
  EXPECT_EQ(messages_.take(kMoment), std::nullopt);
  client_.ungrab(device());
  awaitScans(keyboard());
}

TEST_F(KeyboardReturnTest, MayBeClosedWhileItWaits) {
  plug();
  open();
  unplug();
  device_.reset();
  plug();
  open();
  unplug();
  plugAndGrab();
  device_.reset();
  EXPECT_TRUE(client_.grab(device()));
}

TEST_F(KeyboardReturnTest, ALaterKeyboardOfTheSameNameIsIgnoredWhileTheFirstIsPresent) {
  plug();
  const int first = device();
  open();
  plug();
  type(keyboard(), "1\r");
  EXPECT_EQ(messages_.take(), L"1");
  EXPECT_FALSE(client_.grab(first));
}

TEST_F(KeyboardReturnTest, TheLastOfSeveralThatComeBackIsRead) {
  plug();
  open();
  unplug();
  plug();
  const int first = device();
  awaitGrab(first);
  plug();
  awaitGrab(client_.devices("Plugged XTEST keyboard").back());
  EXPECT_TRUE(client_.grab(first));
}

TEST_F(KeyboardReturnTest, ManyReturnsLeaveNothingBehind) {
  plug();
  open();
  const auto cycle = [this] {
    unplug();
    plug();
    awaitScans(keyboard());
  };
  for (int i = 0; i < 10; ++i) cycle();
  const auto descriptors = entriesOf("/proc/self/fd");
  const auto threads = entriesOf("/proc/self/task");
  for (int i = 0; i < 100; ++i) cycle();
  EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
  EXPECT_EQ(entriesOf("/proc/self/task"), threads);
}

}  // namespace
}  // namespace quorvel
