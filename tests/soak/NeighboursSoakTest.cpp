// Neighbours that do what they can: other clients of the X server, and files in folders that
// everybody may write to.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/rig/Environment.h"
#include "tests/rig/ExpectedForm.h"
#include "tests/rig/Form.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/Process.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/XClient.h"
#include "tests/soak/Figures.h"
#include "tools/common/HostText.h"

// After GoogleTest, which X's macros break.
#include <X11/Xatom.h>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr double kMostMilliseconds = 5;  // that a neighbour may add to a scan

// Does something over and over on a thread of its own.
class Meanwhile {
 public:
  explicit Meanwhile(std::function<void()> action)
      : action_(std::move(action)), thread_([this] {
          for (; !stopped_; ++count_) action_();
        }) {}
  ~Meanwhile() {
    stopped_ = true;
    thread_.join();
  }
  Meanwhile(const Meanwhile&) = delete;
  Meanwhile& operator=(const Meanwhile&) = delete;

  long count() const { return count_; }

 private:
  const std::function<void()> action_;
  std::atomic<bool> stopped_ = false;
  std::atomic<long> count_ = 0;
  std::thread thread_;
};

// How long scans take from their first key to their event.
class ScanTimes {
 public:
  // Scans for half of a figure's time.
  ScanTimes(rig::Driver& driver, terminal::VirtualKeyboard& keyboard) {
    const auto end = Clock::now() + soak::duration() / 2;
    do {
      const auto start = Clock::now();
      terminal::type(keyboard, "1\r");
      EXPECT_EQ(driver.event().data, u"1");
      times_.push_back(Milliseconds(Clock::now() - start).count());
    } while (Clock::now() < end);
    first_ = times_.front();
    std::ranges::sort(times_);
  }

  double median() const { return times_[times_.size() / 2]; }
  std::string text() const {
    std::ostringstream text;
    text.precision(2);
    text << std::fixed << median() << " ms (first " << first_ << ", worst " << times_.back() << ")";
    return text.str();
  }

 private:
  std::vector<double> times_;
  double first_;
};

// Nested windows, the innermost of which has the focus.
class NestedWindows {
 public:
  NestedWindows(Display* display, int count) : display_(display) {
    Window parent = DefaultRootWindow(display);
    for (int i = 0; i < count; ++i) {
      parent = XCreateSimpleWindow(display, parent, 0, 0, 50, 50, 0, 0, 0);
      windows_.push_back(parent);
    }
    // The outermost comes last, so that the server has to draw once.
    for (auto at = windows_.rbegin(); at != windows_.rend(); ++at) XMapWindow(display, *at);
    XSetInputFocus(display, windows_.back(), RevertToPointerRoot, CurrentTime);
    XSync(display, False);
  }
  ~NestedWindows() {
    XDestroyWindow(display_, windows_.front());
    XSync(display_, False);
  }
  NestedWindows(const NestedWindows&) = delete;
  NestedWindows& operator=(const NestedWindows&) = delete;

  Window operator[](std::size_t index) const { return windows_[index % windows_.size()]; }

 private:
  Display* display_;
  std::vector<Window> windows_;
};

class SoakOfNeighbours : public rig::OnScreen {};

TEST_F(SoakOfNeighbours, WindowsThatChangeAroundTheFocus) {
  rig::XServer& server = rig::sharedXServer();
  terminal::VirtualKeyboard& keyboard = server.keyboard(rig::kPlainIndex);
  rig::Driver driver;
  driver.openKeyboard(u"Plain scanner");
  const ScanTimes quiet(driver, keyboard);

  constexpr int kDepth = 2000;
  rig::XClient client(server.display());
  const NestedWindows windows(client.get(), kDepth);
  std::mt19937 random(15);
  const Meanwhile changes([&] {
    const Window window = windows[random()];
    const Window child = XCreateSimpleWindow(client.get(), window, 0, 0, 5, 5, 0, 0, 0);
    XMapWindow(client.get(), child);
    XStoreName(client.get(), window, "changed");
    if (random() % 2) {
      client.setProcess(window, getpid());
    } else {
      client.removeProcess(window);
    }
    client.closeWindow(child);
  });
  const ScanTimes amid(driver, keyboard);
  soak::report("a scan amid 2,000 windows that change", "5 ms more at most",
               amid.text() + " instead of " + quiet.text() + ", during " +
                   std::to_string(changes.count()) + " changes");
  // Not where it is one of many tests on a busy machine.
  if (soak::isMeasured()) {
    EXPECT_LE(amid.median(), quiet.median() + kMostMilliseconds);
  }
}

TEST_F(SoakOfNeighbours, RequestsForTheClipboardWhileTheWindowIsOpen) {
  rig::inOwnProcess([] {
    soak::allowLongLife();
    const auto line = rig::scannerAt("/dev/ttyUSB0");
    rig::Driver driver;
    rig::visitWindow(driver.component, [&](rig::TestWindow& window) {
      line->send("first\r");
      window.awaitRows(1);
      window.select(0);
      window.click("Копировать");
      rig::XClient peer(rig::sharedXServer().display());
      const Window requestor = peer.openWindow();
      const Atom clipboard = XInternAtom(peer.get(), "CLIPBOARD", False);
      const Atom targets[] = {XA_STRING, XInternAtom(peer.get(), "TARGETS", False),
                              XInternAtom(peer.get(), "MULTIPLE", False),
                              XInternAtom(peer.get(), "UTF8_STRING", False)};
      const std::size_t memory = rig::heapBytes();
      constexpr int kAtOnce = 1000;
      long requests = 0;
      std::size_t rows = 1;
      {
        const Meanwhile flood([&] {
          for (int i = 0; i < kAtOnce; ++i) {
            XConvertSelection(peer.get(), clipboard, targets[i % 4], XA_STRING, requestor,
                              CurrentTime);
          }
          XSync(peer.get(), True);
        });
        // The list grows with each row, so that there are to be few of them.
        constexpr std::size_t kMostRows = 200;
        const auto end = Clock::now() + soak::duration();
        while (Clock::now() < end) {
          if (rows < kMostRows) line->send(std::to_string(rows++) + "\r");
          window.await("a row", [&] { return window.rowCount() >= rows; });
          window.run(std::chrono::milliseconds(5));
        }
        requests = flood.count() * kAtOnce;
      }
      // By then the driver has nothing of the flood left to do.
      EXPECT_EQ(rig::clipboard(), "first 'CR' ");
      XSync(peer.get(), True);
      const auto grown = static_cast<long long>(rig::heapBytes()) - static_cast<long long>(memory);
      soak::report("requests for the clipboard while the window is open",
                   "rows come, and memory is bounded",
                   std::to_string(requests) + " requests: " + std::to_string(rows) + " rows, " +
                       std::to_string(grown) + " bytes of memory");
      EXPECT_LT(grown, 1 << 20);
    });
  });
}

TEST_F(SoakOfNeighbours, KeyboardsOfAnyName) {
  std::mt19937 random(15);
  std::size_t names = 0;
  const auto end = Clock::now() + soak::duration();
  while (names == 0 || Clock::now() < end) {
    constexpr std::size_t kLongest = 900;
    std::vector<std::string> keyboards(20);
    for (std::size_t i = 0; i < keyboards.size(); ++i) {
      std::string& name = keyboards[i];
      name.resize(random() % kLongest);
      for (char& byte : name) {
        // The server reads them from a file, as texts between quotation marks.
        do byte = static_cast<char>(random() % 255 + 1);
        while (byte == '"' || byte == '\n' || byte == '\r');
      }
      name += std::to_string(i);  // no two are to look the same
    }
    const rig::XServer server(keyboards);
    const rig::ScopedVariable display("DISPLAY", server.display());
    rig::Driver driver;
    const std::vector<std::string> choices = rig::choicesOf(driver, "KeyboardDevice");
    EXPECT_EQ(choices.size(), keyboards.size());
    for (const std::string& choice : choices) driver.openKeyboard(terminal::toHostText(choice));
    names += keyboards.size();
  }
  soak::report("keyboards of any name", "the form reads, and each opens",
               std::to_string(names) + " names");
}

TEST(SoakOfFiles, ThatMatchInAFolderForEverybody) {
  const rig::ScopedVariable noDisplay("DISPLAY", std::nullopt);
  const std::filesystem::path folder = "/dev/shm/many";
  std::filesystem::create_directory(folder);
  for (int i = 0; i < 50000; ++i) std::ofstream(folder / ("ttyUSB" + std::to_string(i)));
  rig::Driver driver;
  const std::string expected = rig::expectedForm("ru", rig::choiceItem("129", "USB COM1"), "");
  EXPECT_EQ(rig::formOf(driver), expected);
  const auto end = Clock::now() + soak::duration();
  const std::size_t memory = rig::heapBytes();
  const rig::Times before = rig::timesNow();
  int times = 0;
  for (; times == 0 || Clock::now() < end; ++times) EXPECT_EQ(rig::formOf(driver), expected);
  const double each = rig::timesSince(before).processor / times;
  const auto grown = static_cast<long long>(rig::heapBytes()) - static_cast<long long>(memory);
  soak::report("forms beside 50,000 files that match", "as ever, within half a second of work",
               std::to_string(times) + " forms of " + std::to_string(std::lround(each * 1000)) +
                   " ms, " + std::to_string(grown) + " bytes of memory");
  EXPECT_LT(grown, 65536);
  if (soak::isMeasured()) {
    EXPECT_LT(each, 0.5);
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
