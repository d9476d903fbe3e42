// Everything that the driver does, at once.
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <semaphore>
#include <string>

#include "tests/rig/ActingConnection.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tests/soak/Figures.h"
#include "tests/soak/NumberedScans.h"

namespace {

// The window listens to as many ports as there are, from the first on: not to the others here.
constexpr std::int32_t kOfTheWindow = 129;
constexpr std::int32_t kFar = 140;
constexpr std::int32_t kFarther = 150;

// A component that opens its port anew in the event of a scan.
class Reopening {
 public:
  Reopening() : line_(driver_.plugIn(kFarther)) {
    driver_.component.object().Init(&connection_);
    id_ = driver_.open(kFarther);
  }

  // Returns when it has done so, and the scan has arrived.
  void scan() {
    line_.send("act\r");
    EXPECT_TRUE(reopened_.try_acquire_for(rig::kPatience));
    const auto event = events_.take(rig::kPatience);
    EXPECT_TRUE(event && event->data == u"act");
  }

 private:
  void reopen() {
    EXPECT_TRUE(driver_.close(id_));
    id_ = driver_.open(kFarther);
    reopened_.release();
  }

  terminal::EventQueue events_;
  rig::ActingConnection connection_{events_, [this] { reopen(); }};
  std::counting_semaphore<> reopened_{0};
  std::u16string id_;
  rig::SerialDriver driver_;
  terminal::SerialLine& line_;
};

class SoakOfEverything : public rig::OnScreen {};

TEST_F(SoakOfEverything, AtOnce) {
  rig::inOwnProcess([] {
    soak::allowLongLife();
    terminal::VirtualKeyboard& keyboard = rig::sharedXServer().keyboard(rig::kPlainIndex);
    const auto line = rig::scannerAt(rig::portPath(kOfTheWindow));
    rig::SerialDriver serial;
    serial.plugIn(kFar);
    serial.open(kFar);
    rig::Driver typed;
    typed.openKeyboard(u"Plain scanner");
    Reopening reopening;
    const std::u16string form = typed.component.parameters();
    soak::Arrivals arrivals;
    soak::NumberedScans scans(serial);
    const auto take = [&](std::chrono::milliseconds patience) {
      const auto event = serial.component.events().take(patience);
      if (event) arrivals.take(*event);
      if (event) scans.noteArrival();
      return event.has_value();
    };
    std::size_t rounds = 0;
    rig::Driver shown;
    rig::visitWindow(shown.component, [&](rig::TestWindow& window) {
      const auto end = std::chrono::steady_clock::now() + soak::duration();
      while (rounds == 0 || std::chrono::steady_clock::now() < end) {
        const std::string number = std::to_string(++rounds);
        line->send(number + "\r");
        terminal::type(keyboard, number + "\r");
        serial.component.setParameter(u"Speed", 115200);
        serial.component.object().SetLocale(u"ru_RU");
        reopening.scan();
        EXPECT_TRUE(typed.component.parameters() == form);
        EXPECT_EQ(typed.event().data, terminal::toHostText(number));
        window.await("its row", [&] { return window.rowCount() == rounds; });
        while (take(std::chrono::milliseconds(0))) continue;
      }
    });
    scans.stop();
    const long sent = scans.sent().front();
    while (arrivals.count() < sent && take(rig::kPatience)) continue;
    soak::report("serial ports, keyboard, form, window and calls in events at once", "0 lost",
                 std::to_string(sent) + " scans beside " + std::to_string(rounds) +
                     " rounds of everything else, " + std::to_string(sent - arrivals.count()) +
                     " lost, " + std::to_string(arrivals.wrong()) + " wrong");
    EXPECT_EQ(arrivals.count(), sent);
    EXPECT_EQ(arrivals.wrong(), 0);
  });
}

}  // namespace
