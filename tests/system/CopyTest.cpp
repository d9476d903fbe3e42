// The Copy button of the device test window, read by another program, through the built library.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/Program.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/Threads.h"

namespace {

using rig::clipboard;
using rig::inOwnProcess;
using rig::scannerAt;
using rig::TestWindow;
using rig::visitWindow;

using Copy = rig::OnScreen;

// Another program, which takes the clipboard and holds it until someone else takes it.
class Taker {
 public:
  explicit Taker(const std::string& text)
      : xclip_({"xclip", "-i", "-quiet", "-selection", "clipboard"}) {
    xclip_.write(text);
    xclip_.endInput();
    while (xclip_.errorLine().find("Waiting") == std::string::npos) continue;
  }

 private:
  rig::Program xclip_;
};

// Shows the window with one row for each scan.
void visitRows(const std::vector<std::string>& scans,
               const std::function<void(TestWindow&)>& deeds) {
  const auto scanner = scannerAt("/dev/ttyUSB0");
  visitWindow([&](TestWindow& window) {
    std::size_t rows = 0;
    for (const std::string& scan : scans) {
      scanner->send(scan + "\r");
      window.awaitRows(++rows);
    }
    deeds(window);
  });
}

// The same in a process of its own.
void inRows(const std::vector<std::string>& scans, const std::function<void(TestWindow&)>& deeds) {
  inOwnProcess([&] { visitRows(scans, deeds); });
}

void copyRow(const TestWindow& window, int row) {
  window.select(row);
  window.click("Копировать");
}

TEST_F(Copy, PutsTheSelectedTextOnTheClipboard) {
  inRows({"first", "Второй"}, [](TestWindow& window) {
    copyRow(window, 1);
    EXPECT_EQ(clipboard(), "Второй 'CR' ");
    copyRow(window, 0);
    EXPECT_EQ(clipboard(), "first 'CR' ");
  });
}

TEST_F(Copy, StaysOnTheClipboardWhenTheWindowIsClosedAndNoMainLoopRuns) {
  inOwnProcess([] {
    visitRows({"scan"}, [](TestWindow& window) { copyRow(window, 0); });
    EXPECT_EQ(clipboard(), "scan 'CR' ");
    EXPECT_EQ(clipboard(), "scan 'CR' ");
  });
}

TEST_F(Copy, DoesNothingWithoutASelection) {
  const Taker taker("taken");
  inRows({"scan"}, [](TestWindow& window) {
    const std::size_t threads = rig::threadCount();
    window.click("Копировать");
    EXPECT_EQ(rig::threadCount(), threads);
    EXPECT_EQ(clipboard(), "taken");
  });
}

TEST_F(Copy, YieldsToAnotherProgram) {
  inRows({"scan"}, [](TestWindow& window) {
    const std::size_t threads = rig::threadCount();
    copyRow(window, 0);
    copyRow(window, 0);
    // The first text's thread ended when the second took the clipboard; the second's ends now.
    const Taker taker("taken");
    rig::await("the end of its thread", [&] { return rig::threadCount() == threads; });
    EXPECT_EQ(clipboard(), "taken");
    copyRow(window, 0);
    EXPECT_EQ(clipboard(), "scan 'CR' ");
  });
}

TEST_F(Copy, IsIdleWhileTheClipboardIsHeld) {
  inRows({"scan"}, [](TestWindow& window) {
    copyRow(window, 0);
    EXPECT_EQ(clipboard(), "scan 'CR' ");
    const rig::Times before = rig::timesNow();
    window.run(std::chrono::milliseconds(500));
    const rig::Times used = rig::timesSince(before);
    EXPECT_LT(used.processor, used.wall / 4);
  });
}

TEST_F(Copy, OutlivesTheXServer) {
  inOwnProcess([] {
    rig::XServer server({"Scanner"});
    setenv("DISPLAY", server.display().c_str(), 1);
    visitRows({"scan"}, [&](TestWindow& window) { copyRow(window, 0); });
    EXPECT_EQ(clipboard(), "scan 'CR' ");
    const std::size_t threads = rig::threadCount();
    server.kill();
    rig::await("the end of its thread", [&] { return rig::threadCount() == threads - 1; });
  });
}

}  // namespace
