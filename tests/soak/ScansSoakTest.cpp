// Scans without end, counted: none is lost, doubled, out of order or under another name.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "tests/rig/SerialDriver.h"
#include "tests/rig/UsbPort.h"
#include "tests/soak/Figures.h"
#include "tests/soak/NumberedScans.h"

namespace {

using rig::kUsb1;
using rig::SerialDriver;

// While scans pour in the host goes on as hosts do: sets parameters, and the language again.
void callMethods(SerialDriver& driver) {
  driver.component.setParameter(u"Speed", 115200);
  driver.component.setParameter(u"OutputDataType", 0);
  driver.component.object().SetLocale(u"ru_RU");
}

void expectEveryScan(const std::string& figure, std::int32_t ports) {
  SerialDriver driver;
  for (std::int32_t port = kUsb1; port < kUsb1 + ports; ++port) {
    driver.plugIn(port);
    driver.open(port);
  }
  soak::Arrivals arrivals;
  soak::NumberedScans scans(driver);
  const auto take = [&](std::chrono::milliseconds patience) {
    const auto event = driver.component.events().take(patience);
    if (!event) return false;
    arrivals.take(*event);
    scans.noteArrival();
    if (arrivals.count() % 1000 == 0) callMethods(driver);
    return true;
  };
  const auto end = std::chrono::steady_clock::now() + soak::duration();
  while (std::chrono::steady_clock::now() < end) ASSERT_TRUE(take(rig::kPatience));
  scans.stop();
  long sent = 0;
  for (const long count : scans.sent()) sent += count;
  while (arrivals.count() < sent && take(rig::kPatience)) continue;
  soak::report(figure, "0 lost, 0 wrong",
               std::to_string(sent) + " scans, " + std::to_string(sent - arrivals.count()) +
                   " lost, " + std::to_string(arrivals.wrong()) + " wrong");
  EXPECT_EQ(arrivals.count(), sent);
  EXPECT_EQ(arrivals.wrong(), 0);
  for (std::size_t i = 0; i < scans.sent().size(); ++i) {
    EXPECT_EQ(arrivals.next(driver.ids[i]), scans.sent()[i]);
  }
  // None comes twice, either.
  EXPECT_FALSE(driver.component.events().take(std::chrono::milliseconds(0)));
}

TEST(SoakOfScans, OnOnePort) { expectEveryScan("scans on one port", 1); }
TEST(SoakOfScans, OnSixtyFourPorts) { expectEveryScan("scans on 64 ports at once", 64); }

}  // namespace
