// The device test window in hosts and on machines of all kinds, through the built library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/Program.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/Threads.h"

namespace {

using rig::inOwnProcess;
using rig::Row;
using rig::scannerAt;
using rig::TestWindow;
using rig::visitWindow;
using testing::ElementsAre;
using testing::IsEmpty;

using TestWindowHost = rig::OnScreen;

void addDeadPorts(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    std::filesystem::create_symlink("/dev/null", "/dev/ttyS" + std::to_string(i));
  }
}

// The address space of this process, in bytes.
std::size_t addressSpace() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

TEST_F(TestWindowHost, ReturnsAtOnceWithoutADisplay) {
  inOwnProcess([] {
    unsetenv("DISPLAY");
    // As with G_DEBUG=fatal-warnings.
    g_log_set_always_fatal(
        static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING | G_LOG_FATAL_MASK));
    const auto scanner = scannerAt("/dev/ttyUSB0");
    rig::Driver driver;
    const std::size_t threads = rig::threadCount();
    EXPECT_TRUE(driver.component.test());
    EXPECT_TRUE(driver.component.test());
    EXPECT_FALSE(scanner->waitForReader(-1, std::chrono::milliseconds(0)));
    EXPECT_EQ(rig::threadCount(), threads);
  });
}

TEST_F(TestWindowHost, LeavesTheLocaleAlone) {
  inOwnProcess([] {
    setenv("LC_ALL", "C.UTF-8", 1);
    visitWindow([](TestWindow&) {});
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  });
}

TEST_F(TestWindowHost, OpensBesideTheWindowsOfAHostThatRunsGtk) {
  inOwnProcess([] {
    setenv("LC_ALL", "C.UTF-8", 1);
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    GtkWidget* const hostWindow = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_show(hostWindow);
    const auto scanner = scannerAt("/dev/ttyUSB0");
    for (int i = 0; i < 2; ++i) {
      visitWindow([&](TestWindow& window) {
        scanner->send("scan\r");
        EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", "scan 'CR' "}));
      });
      EXPECT_TRUE(gtk_widget_get_visible(hostWindow));
    }
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
    gtk_widget_destroy(hostWindow);
  });
}

TEST_F(TestWindowHost, ClosesWhenTheWindowManagerIsAskedTo) {
  inOwnProcess([] {
    const rig::Program manager({"matchbox-window-manager"});
    visitWindow([](TestWindow& window) {
      window.await("the window manager", [&] {
        GdkRectangle frame;
        gdk_window_get_frame_extents(gtk_widget_get_window(GTK_WIDGET(window.dialog())), &frame);
        return frame.height > GTK_WIDGET(window.dialog())->allocation.height;
      });
      // Ask only once: at the second request this window manager kills the process.
      rig::run({"wmctrl", "-i", "-c", std::to_string(window.id())});
      window.await("closing", [&] { return window.response().has_value(); });
      EXPECT_EQ(window.response(), GTK_RESPONSE_DELETE_EVENT);
    });
  });
}

// A host may call the method again from a timer of its own, which the window's main loop runs.
TEST_F(TestWindowHost, OpensOnlyOnce) {
  inOwnProcess([] {
    const auto scanner = scannerAt("/dev/ttyUSB0");
    rig::Driver driver;
    visitWindow(driver.component, [&](TestWindow& window) {
      EXPECT_TRUE(driver.component.test());
      scanner->send("scan\r");
      EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", "scan 'CR' "}));
    });
  });
}

TEST_F(TestWindowHost, ReturnsWhenTheHostDestroysTheWindow) {
  inOwnProcess([] {
    const auto scanner = scannerAt("/dev/ttyUSB0");
    visitWindow([&](TestWindow& window) {
      scanner->send("shown\r");
      window.awaitRows(1);
      gtk_widget_destroy(GTK_WIDGET(window.dialog()));
      scanner->send("never shown\r");
    });
    // No row may still be on its way to the destroyed window.
    while (g_main_context_iteration(nullptr, FALSE)) continue;
  });
}

// The host's port lies behind a gap in the numbers, where the window does not listen.
TEST_F(TestWindowHost, LeavesAPortOfTheHostAlone) {
  inOwnProcess([] {
    const auto hostScanner = scannerAt("/dev/ttyUSB1");
    rig::Driver driver;
    const std::u16string id = driver.openPort(130);
    visitWindow(driver.component, [&](TestWindow& window) {
      hostScanner->send("during\r");
      EXPECT_EQ(driver.event().data, u"during");
      EXPECT_THAT(window.rows(), IsEmpty());
    });
    hostScanner->send("after\r");
    EXPECT_EQ(driver.event().data, u"after");
    EXPECT_TRUE(driver.component.close(id));
  });
}

TEST_F(TestWindowHost, LeavesAKeyboardOfTheHostAlone) {
  inOwnProcess([] {
    rig::XServer& server = rig::sharedXServer();
    rig::Driver driver;
    driver.component.setParameter(u"KeyboardDevice", u"Plain scanner");
    const auto id = driver.component.open();
    ASSERT_TRUE(id);
    visitWindow(driver.component, [&](TestWindow& window) {
      terminal::type(server.keyboard(rig::kPlainIndex), "during\r");
      EXPECT_EQ(driver.event().data, u"during");
      terminal::type(server.keyboard(rig::kAmpersandIndex), "shown\r");
      EXPECT_THAT(window.awaitRows(1),
                  ElementsAre(Row{std::string(rig::kAmpersandKeyboard) + ":", "shown 'CR' "}));
    });
    terminal::type(server.keyboard(rig::kPlainIndex), "after\r");
    EXPECT_EQ(driver.event().data, u"after");
  });
}

TEST_F(TestWindowHost, OpensInAHostWhoseGtkHadFoundNoDisplay) {
  inOwnProcess([] {
    const std::string display = std::getenv("DISPLAY");
    unsetenv("DISPLAY");
    gtk_disable_setlocale();
    ASSERT_FALSE(gtk_init_check(nullptr, nullptr));
    setenv("DISPLAY", display.c_str(), 1);
    visitWindow([](TestWindow&) {});
  });
}

// Serial ports without a chip behind them: always readable, but there is nothing to read.
TEST_F(TestWindowHost, IsIdleWithManyDeadPorts) {
  inOwnProcess([] {
    addDeadPorts(32);
    const auto scanner = scannerAt("/dev/ttyUSB0");
    visitWindow([&](TestWindow& window) {
      scanner->send("scan\r");
      EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", "scan 'CR' "}));
      const rig::Times before = rig::timesNow();
      window.run(std::chrono::seconds(1));
      const rig::Times taken = rig::timesSince(before);
      EXPECT_LT(taken.processor, taken.wall / 4);
    });
  });
}

TEST_F(TestWindowHost, ClosesAtOnceWithManyPorts) {
  inOwnProcess([] {
    constexpr int kPorts = 100;
    std::vector<std::unique_ptr<terminal::SerialLine>> scanners;
    for (int i = 0; i < kPorts; ++i) {
      scanners.push_back(scannerAt("/dev/ttyUSB" + std::to_string(i)));
    }
    rig::Times closing;
    visitWindow([&](TestWindow&) { closing = rig::timesNow(); });
    const double taken = rig::timesSince(closing).wall;
    std::cout << "closed " << kPorts << " ports in " << taken << " s\n";
    // Readers that are not woken take half a second each on average, 50 s one after another.
    EXPECT_LT(taken, 5);
  });
}

// 192 stacks of the default size take half the address space of a 32-bit host.
TEST_F(TestWindowHost, TakesLittleAddressSpaceForManyPorts) {
  if (sizeof(void*) > 4) GTEST_SKIP() << "a 64-bit host has plenty";
  inOwnProcess([] {
    rig::Driver driver;
    std::size_t without = 0;
    visitWindow(driver.component, [&](TestWindow&) { without = addressSpace(); });
    constexpr std::size_t kPorts = 64;
    addDeadPorts(kPorts);
    visitWindow(driver.component, [&](TestWindow&) {
      EXPECT_LT(addressSpace(), without + kPorts * (std::size_t{1} << 20));
    });
  });
}

TEST_F(TestWindowHost, OutlivesTheXServerAfterTheWindowWasShown) {
  inOwnProcess([] {
    rig::XServer server({"Scanner"});
    setenv("DISPLAY", server.display().c_str(), 1);
    rig::Driver driver;
    driver.component.setParameter(u"KeyboardDevice", u"Scanner");
    const pid_t reader = rig::threadAddedBy([&] { ASSERT_TRUE(driver.component.open()); });
    visitWindow(driver.component, [](TestWindow&) {});
    server.kill();
    // Only the reader of the keyboard ends.
    rig::await("the end of its reader", [&] { return !rig::threads().contains(reader); });
  });
}

TEST_F(TestWindowHost, OutlivesTheXServerWhileTheWindowIsShown) {
  inOwnProcess([] {
    rig::XServer server({"Scanner"});
    setenv("DISPLAY", server.display().c_str(), 1);
    const auto scanner = scannerAt("/dev/ttyUSB0");
    rig::Driver driver;
    visitWindow(driver.component, [&](TestWindow& window) {
      scanner->send("scan\r");
      window.awaitRows(1);
      server.kill();
      window.await("closing", [&] { return window.response().has_value(); });
    });
    // There is no display any more, so no window is shown.
    EXPECT_TRUE(driver.component.test());
    driver.openPort(129);
    scanner->send("still read\r");
    EXPECT_EQ(driver.event().data, u"still read");
  });
}

}  // namespace
