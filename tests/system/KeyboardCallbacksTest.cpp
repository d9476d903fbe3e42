// What hosts do in the event of a keyboard scan, on the reader's thread.
#include <gtest/gtest.h>
#include <sys/time.h>

#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tests/rig/ActingConnection.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XServer.h"

namespace {

using terminal::type;

class KeyboardCallbacksTest : public testing::Test {
 protected:
  // A component whose events go through an acting connection.
  void initialise(std::function<void()> action) {
    driver_ = std::make_unique<rig::Driver>();
    connection_.emplace(events_, std::move(action));
    driver_->component.object().Init(&*connection_);
    descriptors_ = rig::descriptorCount();
  }

  terminal::Event nextEvent() {
    std::optional<terminal::Event> event = events_.take(rig::kPatience);
    if (!event) throw std::runtime_error("no event came");
    return *event;
  }

  rig::XServer server_{{"Scanner"}};
  terminal::VirtualKeyboard& scanner_ = server_.keyboard(0);
  const rig::ScopedVariable display_{"DISPLAY", server_.display()};
  const std::size_t threads_ = rig::settledThreadCount();
  std::size_t descriptors_ = 0;  // before a keyboard is open
  terminal::EventQueue events_;
  std::optional<rig::ActingConnection> connection_;
  std::unique_ptr<rig::Driver> driver_;
};

TEST_F(KeyboardCallbacksTest, CloseTheirOwnDevice) {
  std::u16string id;
  bool closed = false;
  initialise([&] { closed = driver_->component.close(id); });
  id = driver_->openKeyboard(u"Scanner");
  type(scanner_, "act\rtoo late\r");
  EXPECT_EQ(nextEvent().data, u"act");
  EXPECT_TRUE(closed);
  rig::awaitThreadCount(threads_);
  EXPECT_EQ(events_.take(std::chrono::milliseconds(0)), std::nullopt);
  EXPECT_FALSE(driver_->component.close(id));
  EXPECT_EQ(rig::descriptorCount(), descriptors_);
}

TEST_F(KeyboardCallbacksTest, OpenTheirKeyboardAgain) {
  std::u16string first, second;
  initialise([&] {
    driver_->component.close(first);
    second = driver_->openKeyboard(u"Scanner");
  });
  first = driver_->openKeyboard(u"Scanner");
  type(scanner_, "act\r");
  EXPECT_EQ(nextEvent().source, first);
  for (int scan = 0; scan < 10; ++scan) {
    type(scanner_, "scan\r");
    EXPECT_EQ(nextEvent().source, second);
  }
}

TEST_F(KeyboardCallbacksTest, DestroyTheirComponent) {
  initialise([&] { driver_.reset(); });
  driver_->openKeyboard(u"Scanner");
  type(scanner_, "act\rtoo late\r");
  EXPECT_EQ(nextEvent().data, u"act");
  rig::awaitThreadCount(threads_);
  EXPECT_EQ(events_.take(std::chrono::milliseconds(0)), std::nullopt);
  // The library is unloaded with the component and closes descriptors of its own.
  EXPECT_LE(rig::descriptorCount(), descriptors_);
}

TEST_F(KeyboardCallbacksTest, EndTheirThread) {
  initialise([] { pthread_exit(nullptr); });
  const std::u16string id = driver_->openKeyboard(u"Scanner");
  type(scanner_, "act\r");
  rig::awaitThreadCount(threads_);
  EXPECT_TRUE(driver_->component.close(id));
  const std::u16string again = driver_->openKeyboard(u"Scanner");
  type(scanner_, "scan\r");
  EXPECT_EQ(nextEvent().source, again);
}

// A timer fires every millisecond, and its handler is installed without SA_RESTART.
TEST_F(KeyboardCallbacksTest, LoseNothingWhenSignalsInterruptTheHost) {
  rig::inOwnProcess([this] {
    struct sigaction interrupt = {};
    interrupt.sa_handler = [](int) {};
    sigaction(SIGALRM, &interrupt, nullptr);
    const itimerval everyMillisecond = {{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    rig::Driver driver;
    driver.openKeyboard(u"Scanner");
    for (int scan = 0; scan < 200; ++scan) {
      const std::string data = "scan " + std::to_string(scan);
      type(scanner_, data + "\r");
      EXPECT_EQ(driver.event().data, std::u16string(data.begin(), data.end()));
    }
  });
}

}  // namespace
