// What comes and goes leaves nothing behind.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/UsbPort.h"
#include "tests/soak/Figures.h"

namespace {

using rig::kUsb1;

TEST(SoakOfOpenings, OfAPort) {
  rig::SerialDriver driver;
  terminal::SerialLine& line = driver.plugIn(kUsb1);
  soak::expectNoGrowth("openings of a port, with a scan each", [&] {
    const std::u16string id = driver.open(kUsb1);
    line.send("1\r");
    EXPECT_EQ(driver.event().source, id);
    EXPECT_TRUE(driver.close(id));
  });
}

TEST(SoakOfOpenings, OfAComponent) {
  terminal::SerialLine line(terminal::LineSetting::kFramed);
  line.link(rig::portPath(kUsb1));
  const terminal::ComponentLibrary loaded(rig::libraryPath());
  soak::expectNoGrowth("components, each with a device open", [] {
    rig::Driver driver;
    driver.openPort(kUsb1);
  });
}

class SoakOfScreenOpenings : public rig::OnScreen {};

TEST_F(SoakOfScreenOpenings, OfAKeyboard) {
  rig::XServer& server = rig::sharedXServer();
  rig::Driver driver;
  soak::expectNoGrowth("openings of a keyboard, with a scan each", [&] {
    const std::u16string id = driver.openKeyboard(u"Plain scanner");
    terminal::type(server.keyboard(rig::kPlainIndex), "1\r");
    EXPECT_EQ(driver.event().source, id);
    EXPECT_TRUE(driver.component.close(id));
  });
}

TEST_F(SoakOfScreenOpenings, OfTheTestWindow) {
  rig::inOwnProcess([] {
    soak::allowLongLife();
    const auto line = rig::scannerAt(rig::portPath(kUsb1));
    rig::Driver driver;
    // GTK keeps something of every window.
    constexpr std::size_t kBytes = 1024;
    soak::expectNoGrowth(
        "test windows, with a scan each",
        [&] {
          rig::visitWindow(driver.component, [&](rig::TestWindow& window) {
            line->send("1\r");
            window.awaitRows(1);
          });
        },
        kBytes);
  });
}

TEST_F(SoakOfScreenOpenings, OfTheForm) {
  rig::Driver driver;
  const std::u16string form = driver.component.parameters();
  soak::expectNoGrowth("settings forms", [&] { EXPECT_EQ(driver.component.parameters(), form); });
}

}  // namespace
