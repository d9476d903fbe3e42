// Scans from serial ports, through the built library.
#include <gtest/gtest.h>

#include "tests/system/rig/Driver.h"
#include "tools/SerialLine.h"

namespace {

using terminal::LineSetting;
using terminal::SerialLine;

TEST(Serial, OneScanBecomesOneEvent) {
  SerialLine line(LineSetting::kFramed);
  line.link("/dev/ttyUSB0");
  rig::Driver driver;
  const std::u16string id = driver.openPort(129);
  line.send("4600051000057\r");
  const terminal::Event event = driver.event();
  EXPECT_EQ(event.source, u"InputDevice#1");
  EXPECT_EQ(event.name, u"Штрихкод");
  EXPECT_EQ(event.data, u"4600051000057");
  EXPECT_TRUE(driver.component.close(id));
  EXPECT_EQ(driver.component.memory().blocksOut(), 0);
}

}  // namespace
