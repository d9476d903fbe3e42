// Scans without end, counted: none is lost, doubled, out of order or under another name.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#include "tests/rig/SerialDriver.h"
#include "tests/soak/Figures.h"
#include "tools/common/HostText.h"

namespace {

using rig::SerialDriver;

constexpr std::int32_t kUsb1 = 129;
// Scans on their way; more would fill the host's queue, not the driver.
constexpr std::ptrdiff_t kUnderWay = 2000;

// Numbered scans on every line of the driver, in turn.
class NumberedScans {
 public:
  explicit NumberedScans(SerialDriver& driver)
      : driver_(driver), sent_(driver.lines.size()), thread_([this] { send(); }) {}
  ~NumberedScans() { stop(); }
  NumberedScans(const NumberedScans&) = delete;
  NumberedScans& operator=(const NumberedScans&) = delete;

  void stop() {
    stopped_ = true;
    room_.release();
    if (thread_.joinable()) thread_.join();
  }
  void noteArrival() { room_.release(); }
  // After stop: how many of each line.
  const std::vector<long>& sent() const { return sent_; }

 private:
  void send() {
    for (std::size_t turn = 0; !stopped_; turn = (turn + 1) % sent_.size()) {
      room_.acquire();
      driver_.lines[turn].send(std::to_string(sent_[turn]++) + '\r');
    }
  }

  SerialDriver& driver_;
  std::vector<long> sent_;
  std::atomic<bool> stopped_ = false;
  std::counting_semaphore<> room_{kUnderWay};
  std::thread thread_;
};

// The next number of each device, and how many scans were another.
class Arrivals {
 public:
  void take(const terminal::Event& event) {
    ++count_;
    long& next = next_[event.source];
    const long number = std::stol(terminal::toUtf8(event.data));
    if (number != next || event.name != u"Штрихкод") ++wrong_;
    next = number + 1;
  }
  long count() const { return count_; }
  long wrong() const { return wrong_; }
  long next(const std::u16string& source) { return next_[source]; }

 private:
  std::map<std::u16string, long> next_;
  long count_ = 0;
  long wrong_ = 0;
};

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
  Arrivals arrivals;
  NumberedScans scans(driver);
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
