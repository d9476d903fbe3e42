// An X server that dies at any request the driver makes must not take the host with it.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XProxy.h"
#include "tests/rig/XServer.h"

namespace {

using rig::Driver;
using rig::XProxy;
using terminal::Component;
using terminal::type;

constexpr std::chrono::milliseconds kMoment{1};

// What a test does with a driver whose X server is about to die.
using Operation = std::function<void(std::unique_ptr<Driver>&, XProxy&)>;

// Opens the scanner; empty when that fails.
std::optional<std::u16string> openScanner(Component& component) {
  component.setParameter(u"Port", 0);
  component.setParameter(u"KeyboardDevice", u"Scanner");
  return component.open();
}

class KeyboardServerLossTest : public testing::Test {
 protected:
  // Lets the server die at the first request of `operation`, then at the second, and so on, each
  // time with a new driver on which `prepare` is done first.
  void dieAtEveryRequest(const Operation& prepare, const Operation& operation) {
    const unsigned requests = countRequests(prepare, operation);
    ASSERT_GT(requests, 0U);
    RecordProperty("requests", static_cast<int>(requests));
    for (unsigned request = 1; request <= requests; ++request) {
      SCOPED_TRACE("request " + std::to_string(request) + " of " + std::to_string(requests));
      const std::size_t descriptors = rig::descriptorCount();
      const std::size_t threads = rig::settledThreadCount();
      dieAt(request, prepare, operation);
      EXPECT_EQ(rig::descriptorCount(), descriptors);
      rig::awaitThreadCount(threads);
    }
    expectServed();
  }

  rig::XServer server_{{"Scanner", "Keys"}};

 private:
  unsigned countRequests(const Operation& prepare, const Operation& operation) {
    XProxy proxy(server_.display());
    const rig::ScopedVariable display("DISPLAY", proxy.display());
    auto driver = std::make_unique<Driver>();
    prepare(driver, proxy);
    const unsigned before = proxy.requests();
    operation(driver, proxy);
    return proxy.requests() - before;
  }

  void dieAt(unsigned request, const Operation& prepare, const Operation& operation) {
    XProxy proxy(server_.display());
    const rig::ScopedVariable display("DISPLAY", proxy.display());
    auto driver = std::make_unique<Driver>();
    prepare(driver, proxy);
    proxy.dieAtRequestFromNow(request);
    operation(driver, proxy);
  }

  // Another connection of the same process, open all along, must still work.
  void expectServed() {
    type(server_.keyboard(1), "1\r");
    EXPECT_EQ(other_.event().data, u"1");
  }

  const rig::ScopedVariable display_{"DISPLAY", server_.display()};
  Driver other_;

  void SetUp() override { other_.openKeyboard(u"Keys"); }
};

void nothing(std::unique_ptr<Driver>&, XProxy&) {}

void open(std::unique_ptr<Driver>& driver, XProxy&) { ASSERT_TRUE(openScanner(driver->component)); }

TEST_F(KeyboardServerLossTest, WhileTheFormIsBuilt) {
  dieAtEveryRequest(nothing, [](std::unique_ptr<Driver>& driver, XProxy&) {
    EXPECT_NE(driver->component.parameters().find(u"KeyboardDevice"), std::u16string::npos);
  });
}

TEST_F(KeyboardServerLossTest, WhileAKeyboardIsOpened) {
  dieAtEveryRequest(nothing, [](std::unique_ptr<Driver>& driver, XProxy& proxy) {
    const bool opened = openScanner(driver->component).has_value();
    EXPECT_EQ(opened, !proxy.isDead());
  });
}

TEST_F(KeyboardServerLossTest, WhileAKeyboardIsClosed) {
  dieAtEveryRequest(open, [](std::unique_ptr<Driver>& driver, XProxy&) {
    EXPECT_TRUE(driver->component.close(u"InputDevice#1"));
  });
}

TEST_F(KeyboardServerLossTest, WhileTheComponentIsDestroyed) {
  dieAtEveryRequest(open, [](std::unique_ptr<Driver>& driver, XProxy&) { driver.reset(); });
}

TEST_F(KeyboardServerLossTest, WhileKeysAreRead) {
  rig::XClient client(server_.display());
  client.focus(client.openWindow(client.openWindow()));
  dieAtEveryRequest(open, [this](std::unique_ptr<Driver>& driver, XProxy& proxy) {
    type(server_.keyboard(0), "1\r");
    std::optional<terminal::Event> event;
    rig::await("the scan or the server's end", [&] {
      event = driver->component.events().take(kMoment);
      return event || proxy.isDead();
    });
    EXPECT_TRUE(driver->component.close(u"InputDevice#1"));
  });
}

TEST_F(KeyboardServerLossTest, WhileAKeyboardComesBack) {
  rig::XClient client(server_.display());
  client.addMaster("Plugged");
  const auto openPlugged = [](std::unique_ptr<Driver>& driver, XProxy&) {
    driver->openKeyboard(u"Plugged XTEST keyboard");
  };
  dieAtEveryRequest(openPlugged, [&](std::unique_ptr<Driver>& driver, XProxy& proxy) {
    client.removeMaster(client.device("Plugged keyboard"));
    client.addMaster("Plugged");
    std::optional<terminal::Event> event;
    rig::await("a scan or the server's end", [&] {
      type(client.xTestKeyboardOf("Plugged"), "1\r");
      event = driver->component.events().take(kMoment);
      return event || proxy.isDead();
    });
    EXPECT_TRUE(driver->component.close(u"InputDevice#1"));
  });
}

}  // namespace
