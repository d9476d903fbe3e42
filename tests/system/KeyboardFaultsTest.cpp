// Whatever happens to the X server while a keyboard is open, the host must survive.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/rig/Driver.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"

namespace {

using rig::Driver;
using rig::XClient;
using terminal::type;

class KeyboardFaultsTest : public testing::Test {
 protected:
  KeyboardFaultsTest() { setenv("DISPLAY", server_.display().c_str(), 1); }

  rig::XServer server_{{"Scanner", "Keys"}};
};

// Focuses one window after another, each a child of another process's window, and closes them while
// the driver may be querying them.
class Restlessness {
 public:
  explicit Restlessness(const std::string& display) : client_(display) {}
  ~Restlessness() {
    over_ = true;
    thread_.join();
  }
  Restlessness(const Restlessness&) = delete;
  Restlessness& operator=(const Restlessness&) = delete;

  unsigned windows() const { return windows_; }

 private:
  void run() {
    while (!over_) {
      const Window outer = client_.openWindow();
      const Window inner = client_.openWindow(client_.openWindow(outer));
      client_.focus(inner);
      client_.closeWindow(outer);
      ++windows_;
    }
  }

  XClient client_;
  std::atomic<bool> over_ = false;
  std::atomic<unsigned> windows_ = 0;
  std::thread thread_{[this] { run(); }};
};

TEST_F(KeyboardFaultsTest, NoKeyIsLostToWindowsThatComeAndGo) {
  constexpr int kScans = 250;
  constexpr unsigned kWindows = 100;
  const std::string text = "0123456789abcdefghi";  // twenty keys, counting Return
  Driver driver;
  driver.openKeyboard(u"Scanner");
  const Restlessness restlessness(server_.display());
  for (int scan = 0; scan < kScans || restlessness.windows() < kWindows; ++scan) {
    type(server_.keyboard(0), text + "\r");
    ASSERT_EQ(driver.event().data, std::u16string(text.begin(), text.end())) << "scan " << scan;
  }
}

TEST_F(KeyboardFaultsTest, NoKeyIsLostInAFlood) {
  constexpr int kScans = 250;
  const std::string text = "0123456789abcdefghi";
  Driver driver;
  driver.openKeyboard(u"Scanner");
  const Restlessness restlessness(server_.display());
  for (int scan = 0; scan < kScans; ++scan) type(server_.keyboard(0), text + "\r");
  for (int scan = 0; scan < kScans; ++scan) {
    ASSERT_EQ(driver.event().data, std::u16string(text.begin(), text.end())) << "scan " << scan;
  }
}

TEST_F(KeyboardFaultsTest, ADisabledKeyboardIsReadAgainWhenItIsEnabled) {
  XClient client(server_.display());
  const int device = client.device("Scanner");
  Driver driver;
  driver.openKeyboard(u"Scanner");
  client.setEnabled(device, false);
  client.setEnabled(device, true);
  type(server_.keyboard(0), "1\r");
  EXPECT_EQ(driver.event().data, u"1");
}

// Ungrabbing it would crash the server.
TEST_F(KeyboardFaultsTest, ClosingADisabledKeyboardDoesNotEndTheServer) {
  XClient client(server_.display());
  Driver driver;
  const std::u16string id = driver.openKeyboard(u"Scanner");
  client.setEnabled(client.device("Scanner"), false);
  EXPECT_TRUE(driver.component.close(id));
  driver.openKeyboard(u"Keys");
  type(server_.keyboard(1), "1\r");
  EXPECT_EQ(driver.event().data, u"1");
}

TEST_F(KeyboardFaultsTest, ARemovedDeviceIsClosedLikeAnyOther) {
  XClient client(server_.display());
  client.addMaster("Second");
  Driver driver;
  const std::u16string removed = driver.openKeyboard(u"Second XTEST keyboard");
  const std::u16string scanner = driver.openKeyboard(u"Scanner");
  client.removeMaster(client.device("Second keyboard"));
  EXPECT_TRUE(driver.component.close(removed));
  type(server_.keyboard(0), "1\r");
  EXPECT_EQ(driver.event().source, scanner);
}

TEST_F(KeyboardFaultsTest, ADyingServerEndsTheReadersButNotTheHost) {
  Driver driver;
  const std::size_t threads = rig::threadCount();
  const std::u16string first = driver.openKeyboard(u"Scanner");
  const std::u16string second = driver.openKeyboard(u"Keys");
  const bool unserved = server_.kill();
  rig::await("the readers' end", [&] { return rig::threadCount() == threads; });
  EXPECT_TRUE(driver.component.close(first));
  if (!unserved) GTEST_SKIP() << "another X server took the display's number at once";
  EXPECT_THROW(driver.openKeyboard(u"Scanner"), std::runtime_error);
  // The other device is left for the component to close.
}

TEST_F(KeyboardFaultsTest, AnotherServerServesAfterOneHasDied) {
  Driver driver;
  const std::u16string lost = driver.openKeyboard(u"Scanner");
  server_.kill();
  rig::XServer another({"Scanner"});
  setenv("DISPLAY", another.display().c_str(), 1);
  driver.openKeyboard(u"Scanner");
  type(another.keyboard(0), "1\r");
  EXPECT_EQ(driver.event().data, u"1");
  EXPECT_TRUE(driver.component.close(lost));
}

// Errors on the host's own display must reach the host's handler.
std::atomic<int> errorsOfTheHost = 0;

TEST_F(KeyboardFaultsTest, ErrorsOfOtherDisplaysReachTheEarlierHandler) {
  const XErrorHandler before = XSetErrorHandler([](Display*, XErrorEvent*) {
    ++errorsOfTheHost;
    return 0;
  });
  XClient client(server_.display());
  {
    Driver driver;
    driver.openKeyboard(u"Scanner");
    client.closeWindow(1);
    EXPECT_EQ(errorsOfTheHost, 1);
  }
  client.closeWindow(1);
  EXPECT_EQ(errorsOfTheHost, 2);
  XSetErrorHandler(before);
}

}  // namespace
