// The dialog object on a real X server: cases that a host cannot reach through the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "devices/XConnection.h"
#include "dialog/DevTestDialogLinux.h"
#include "dialog/Gtk.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "util/OutputData.h"

namespace quorvel {
namespace {

using rig::inOwnProcess;
using rig::Row;
using rig::TestWindow;
using testing::ElementsAre;

using DialogOnScreen = rig::OnScreen;
using Gtk = rig::OnScreen;

std::vector<Row> rowsOfOneScan(unsigned dataType) {
  std::vector<Row> rows;
  const auto scanner = rig::scannerAt("/dev/ttyACM0");
  InputDeviceComPortFactory ports;
  ports.suffix.clear();
  DevTestDialogLinux dialog({}, ports, false, static_cast<int>(dataType));
  rig::whileTestWindowIsOpen([&] { dialog.ShowDlg(); },
                             [&](TestWindow& window) {
                               scanner->send("123\r");
                               rows = window.awaitRows(1);
                             });
  return rows;
}

TEST_F(DialogOnScreen, ListsScansInEachDataType) {
  inOwnProcess([] {
    EXPECT_THAT(rowsOfOneScan(kText), ElementsAre(Row{"ACM1:", "123 'CR' "}));
    EXPECT_THAT(rowsOfOneScan(kHumanReadable), ElementsAre(Row{"ACM1:", "123(013)"}));
    EXPECT_THAT(rowsOfOneScan(kBase64), ElementsAre(Row{"ACM1:", "MTIzDQ=="}));
  });
}

// Eight readers at once, which do not wait for their rows to be shown.
TEST_F(DialogOnScreen, ListsAFloodInOrderPerSource) {
  inOwnProcess([] {
    constexpr int kSources = 8;
    constexpr int kMessages = 250;
    DevTestDialogLinux dialog({}, {}, false, kBase64);
    std::vector<std::thread> readers;
    rig::whileTestWindowIsOpen(
        [&] { dialog.ShowDlg(); },
        [&](TestWindow& window) {
          for (int i = 0; i < kSources; ++i) {
            readers.emplace_back([&dialog, source = std::to_wstring(i)] {
              for (int k = 0; k < kMessages; ++k) dialog.OnInput(source, std::to_wstring(k));
            });
          }
          std::vector<int> next(kSources, 0);
          for (const Row& row : window.awaitRows(kSources * kMessages)) {
            EXPECT_EQ(row.data, std::to_string(next[std::stoul(row.source)]++)) << row.source;
          }
          EXPECT_THAT(next, testing::Each(kMessages));
        });
    for (std::thread& reader : readers) reader.join();
  });
}

TEST_F(DialogOnScreen, DropsScansAfterTheWindowIsClosed) {
  inOwnProcess([] {
    DevTestDialogLinux dialog({}, {}, false, kBase64);
    rig::whileTestWindowIsOpen([&] { dialog.ShowDlg(); }, [](TestWindow&) {});
    // Handle the X server's last events about the window.
    gdk_flush();
    while (g_main_context_iteration(nullptr, FALSE)) continue;
    dialog.OnInput(L"COM1", L"late");
    EXPECT_FALSE(g_main_context_pending(nullptr));
  });
}

// GTK's own error handlers would end the process.
TEST_F(Gtk, IsPreparedBelowTheErrorHandlersOfTheDriver) {
  inOwnProcess([] {
    installXErrorHandlers();
    const XErrorHandler protocol = XSetErrorHandler(nullptr);
    const XIOErrorHandler connection = XSetIOErrorHandler(nullptr);
    ASSERT_TRUE(prepareGtk([] {}));
    EXPECT_EQ(XSetErrorHandler(nullptr), protocol);
    EXPECT_EQ(XSetIOErrorHandler(nullptr), connection);
  });
}

}  // namespace
}  // namespace quorvel
