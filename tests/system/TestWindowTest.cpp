// The rows of the device test window, through the built library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <string>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::inOwnProcess;
using rig::Row;
using rig::TestWindow;
using rig::visitWindow;
using terminal::SerialLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class TestWindowRows : public rig::WindowTest {};

TEST_F(TestWindowRows, IsEmptyWhenThereIsNothingToListenTo) {
  inWindow([&](TestWindow& window) { EXPECT_THAT(window.rows(), IsEmpty()); });
}

TEST_F(TestWindowRows, ListsWhatEveryPortAndKeyboardSends) {
  SerialLine& com = plugIn("/dev/ttyS0");
  SerialLine& acm = plugIn("/dev/ttyACM0");
  SerialLine& usb = plugIn("/dev/ttyUSB0");
  rig::XServer& server = rig::sharedXServer();
  inWindow([&](TestWindow& window) {
    com.send("one\r");
    acm.send("two\r");
    usb.send("three\r");
    terminal::type(server.keyboard(rig::kAmpersandIndex), "four\r");
    terminal::type(server.keyboard(rig::kPlainIndex), "five\r");
    EXPECT_THAT(window.awaitRows(5),
                UnorderedElementsAre(Row{"COM1:", "one 'CR' "}, Row{"ACM1:", "two 'CR' "},
                                     Row{"USB1:", "three 'CR' "},
                                     Row{std::string(rig::kAmpersandKeyboard) + ":", "four 'CR' "},
                                     Row{std::string(rig::kPlainKeyboard) + ":", "five 'CR' "}));
  });
}

// The window counts the ports of each family and ignores the numbers of the files.
TEST_F(TestWindowRows, AssumesThatPortsAreNumberedWithoutGaps) {
  SerialLine& first = plugIn("/dev/ttyACM0");
  SerialLine& third = plugIn("/dev/ttyACM2");
  inWindow([&](TestWindow& window) {
    third.send("never listed\r");
    first.send("listed\r");
    EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"ACM1:", "listed 'CR' "}));
  });
}

TEST_F(TestWindowRows, ShowsControlCharactersByName) {
  SerialLine& scanner = plugIn("/dev/ttyUSB0");
  inWindow([&](TestWindow& window) {
    scanner.send("\x02 A\tB\x1D\x7F\r");
    EXPECT_EQ(window.awaitRows(1)[0].data, " 'STX'  'SPACE' A 'TAB' B 'GS'  'DEL'  'CR' ");
  });
}

TEST_F(TestWindowRows, ShowsLettersOutsideAsciiInAnyLocale) {
  for (const char* const locale : {"C", "C.UTF-8"}) {
    ASSERT_TRUE(std::setlocale(LC_ALL, locale));
    SerialLine& scanner = plugIn("/dev/ttyUSB0");
    inWindow([&](TestWindow& window) {
      scanner.send("Привет\r");
      EXPECT_EQ(window.awaitRows(1)[0].data, "Привет 'CR' ");
      EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), locale);
    });
  }
  std::setlocale(LC_ALL, "C");
}

TEST_F(TestWindowRows, CutsALongTextAfterAWholeCharacter) {
  SerialLine& scanner = plugIn("/dev/ttyUSB0");
  inWindow([&](TestWindow& window) {
    std::string scan;
    while (scan.size() < 2000) scan += "Ж";
    scanner.send(scan + "\r");
    // 1023 bytes would be 511 letters and a half.
    EXPECT_EQ(window.awaitRows(1)[0].data, scan.substr(0, 1022));
  });
}

TEST_F(TestWindowRows, ScrollsToEachNewRowAndActivatesIt) {
  SerialLine& scanner = plugIn("/dev/ttyUSB0");
  inWindow([&](TestWindow& window) {
    int activated = 0;
    g_signal_connect(window.list(), "row-activated",
                     G_CALLBACK(+[](GtkTreeView*, GtkTreePath*, GtkTreeViewColumn*,
                                    gpointer count) { ++*static_cast<int*>(count); }),
                     &activated);
    constexpr int kMoreThanFit = 30;
    for (int i = 1; i <= kMoreThanFit; ++i) {
      scanner.send("x\r");
      window.awaitRows(static_cast<std::size_t>(i));
    }
    window.await("the last row", [&] {
      GtkTreePath* from = nullptr;
      GtkTreePath* to = nullptr;
      if (!gtk_tree_view_get_visible_range(window.list(), &from, &to)) return false;
      const int last = gtk_tree_path_get_indices(to)[0];
      gtk_tree_path_free(from);
      gtk_tree_path_free(to);
      return last == kMoreThanFit - 1;
    });
    EXPECT_EQ(activated, kMoreThanFit);
  });
}

TEST_F(TestWindowRows, GoesOnListeningAfterClear) {
  SerialLine& scanner = plugIn("/dev/ttyUSB0");
  inWindow([&](TestWindow& window) {
    scanner.send("before\r");
    window.awaitRows(1);
    window.click("Очистить");
    EXPECT_THAT(window.rows(), IsEmpty());
    scanner.send("after\r");
    EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", "after 'CR' "}));
  });
}

// A typing scanner's Enter reaches the window as well.
TEST_F(TestWindowRows, ButtonsTakeNoFocusFromAClick) {
  inWindow([&](TestWindow& window) {
    for (const char* const label : {"Закрыть", "Очистить", "Копировать"}) {
      EXPECT_FALSE(gtk_button_get_focus_on_click(window.button(label))) << label;
    }
    EXPECT_FALSE(gtk_tree_view_get_enable_search(window.list()));
  });
}

TEST_F(TestWindowRows, OpensAgainAndLeavesNothingBehind) {
  SerialLine& scanner = plugIn("/dev/ttyUSB0");
  inOwnProcess([&] {
    rig::Driver driver;
    const auto scanOnce = [&](const std::string& scan) {
      visitWindow(driver.component, [&](TestWindow& window) {
        EXPECT_THAT(window.rows(), IsEmpty());
        scanner.send(scan + "\r");
        EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", scan + " 'CR' "}));
        window.click("Закрыть");
        EXPECT_EQ(window.response(), 1);
      });
    };
    scanOnce("first");
    const std::size_t threads = rig::threadCount();
    const std::size_t descriptors = rig::descriptorCount();
    scanOnce("second");
    EXPECT_EQ(rig::threadCount(), threads);
    EXPECT_EQ(rig::descriptorCount(), descriptors);
    EXPECT_EQ(driver.component.memory().blocksOut(), 0);
  });
}

// Eight scanners send each scan as soon as the one before it is listed.
TEST_F(TestWindowRows, ListsTwoThousandScansInOrderPerPort) {
  constexpr std::size_t kPorts = 8;
  constexpr int kScans = 250;
  std::vector<SerialLine*> scanners;
  for (std::size_t i = 0; i < kPorts; ++i) {
    scanners.push_back(&plugIn("/dev/ttyUSB" + std::to_string(i)));
  }
  inWindow([&](TestWindow& window) {
    std::vector<int> listed(kPorts, 0);
    std::size_t seen = 0;
    for (SerialLine* const scanner : scanners) scanner->send("0\r");
    window.await("2000 rows", [&] {
      for (; seen < window.rowCount(); ++seen) {
        const Row row = window.row(seen);
        const auto port = static_cast<std::size_t>(row.source[3] - '1');
        EXPECT_EQ(row.data, std::to_string(listed[port]) + " 'CR' ") << row.source;
        if (++listed[port] == kScans) continue;
        scanners[port]->send(std::to_string(listed[port]) + "\r");
      }
      return seen == kPorts * kScans;
    });
    EXPECT_THAT(listed, testing::Each(kScans));
  });
}

}  // namespace
