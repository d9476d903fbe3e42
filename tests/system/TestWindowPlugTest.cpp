// Devices that are plugged in while the device test window is open, through the built library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"

namespace {

using rig::Row;
using rig::scannerAt;
using rig::TestWindow;
using terminal::SerialLine;
using testing::Contains;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

void awaitListening(TestWindow& window, SerialLine& scanner) {
  window.await("a reader", [&] { return scanner.waitForReader(-1, std::chrono::milliseconds(0)); });
}

// Types repeatedly, as there is no sign that the window has begun to listen.
void awaitRowFrom(TestWindow& window, terminal::VirtualKeyboard& keyboard) {
  rig::await("a row", [&] {
    terminal::type(keyboard, "2\r");
    while (g_main_context_iteration(nullptr, FALSE)) continue;
    return window.rowCount() > 0;
  });
}

class TestWindowPlug : public rig::WindowTest {};

TEST_F(TestWindowPlug, ListensToAPortThatAppears) {
  SerialLine& first = plugIn("/dev/ttyUSB0");
  inWindow([&](TestWindow& window) {
    const auto second = scannerAt("/dev/ttyUSB1");
    const auto other = scannerAt("/dev/ttyACM4");
    awaitListening(window, *second);
    awaitListening(window, *other);
    first.send("one\r");
    second->send("two\r");
    other->send("three\r");
    EXPECT_THAT(window.awaitRows(3),
                UnorderedElementsAre(Row{"USB1:", "one 'CR' "}, Row{"USB2:", "two 'CR' "},
                                     Row{"ACM5:", "three 'CR' "}));
  });
}

TEST_F(TestWindowPlug, ListensToAPortThatMayBeOpenedLater) {
  inWindow([&](TestWindow& window) {
    const std::string port = "/dev/ttyUSB0";
    // A port that is there but cannot be opened yet.
    std::filesystem::create_directory(port);
    const auto unrelated = scannerAt("/dev/ttyACM0");
    awaitListening(window, *unrelated);
    std::filesystem::remove(port);
    const auto scanner = scannerAt(port);
    awaitListening(window, *scanner);
    scanner->send("scan\r");
    EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", "scan 'CR' "}));
  });
}

TEST_F(TestWindowPlug, StartsOneReaderForEachPort) {
  SerialLine& first = plugIn("/dev/ttyUSB0");
  inWindow([&](TestWindow& window) {
    first.send("one\r");
    window.awaitRows(1);
    // From here on GTK's own threads, which look for fonts, may only end.
    const std::size_t threads = rig::settledThreadCount();
    const auto second = scannerAt("/dev/ttyUSB1");
    awaitListening(window, *second);
    EXPECT_LE(rig::settledThreadCount(), threads + 1);
    // Other files, and other changes to the ports.
    std::filesystem::create_symlink("/dev/null", "/dev/ttyUSB");
    std::filesystem::create_symlink("/dev/null", "/dev/ttyUSB2x");
    std::filesystem::create_symlink("/dev/null", "/dev/ttyS99999999999");
    std::filesystem::permissions("/dev/ttyUSB0", std::filesystem::perms::all);
    const auto last = scannerAt("/dev/ttyUSB3");
    awaitListening(window, *last);
    EXPECT_LE(rig::settledThreadCount(), threads + 2);
  });
}

TEST_F(TestWindowPlug, ListensToAKeyboardThatIsSwitchedOnLater) {
  rig::inOwnProcess([] {
    rig::XServer server({"First", "Second"});
    setenv("DISPLAY", server.display().c_str(), 1);
    rig::XClient client(server.display());
    server.keyboard(1);
    client.setEnabled(client.device("Second"), false);
    rig::visitWindow([&](TestWindow& window) {
      // A scan that is under way at another keyboard meanwhile stays whole.
      terminal::type(server.keyboard(0), "46");
      client.setEnabled(client.device("Second"), true);
      server.reconnectKeyboard(1);
      awaitRowFrom(window, server.keyboard(1));
      EXPECT_EQ(window.row(0).source, "Second:");
      terminal::type(server.keyboard(0), "00\r");
      window.await("the scan",
                   [&] { return std::ranges::count(window.rows(), "First:", &Row::source) > 0; });
      EXPECT_THAT(window.rows(), Contains(Row{"First:", "4600 'CR' "}));
    });
  });
}

// Switched off and on again, a keyboard is listened to by the same reader.
TEST_F(TestWindowPlug, ListensOnToAKeyboardThatComesBack) {
  rig::inOwnProcess([] {
    rig::XServer server({"First", "Second"});
    setenv("DISPLAY", server.display().c_str(), 1);
    rig::XClient client(server.display());
    server.keyboard(1);
    rig::visitWindow([&](TestWindow& window) {
      const std::size_t threads = rig::settledThreadCount();
      client.setEnabled(client.device("Second"), false);
      client.setEnabled(client.device("Second"), true);
      server.reconnectKeyboard(1);
      awaitRowFrom(window, server.keyboard(1));
      EXPECT_EQ(window.row(0).source, "Second:");
      EXPECT_LE(rig::settledThreadCount(), threads);
    });
  });
}

}  // namespace
