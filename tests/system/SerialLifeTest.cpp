// From loading the library to the end of the process: nothing leaks, and nothing crashes on exit
// while scans come in.
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <optional>
#include <thread>
#include <utility>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"
#include "tests/rig/UsbPort.h"

namespace {

using rig::kUsb1;
using rig::SerialDriver;
using terminal::LineSetting;
using terminal::SerialLine;

// While it exists, scans on all lines as fast as they accept data.
class Flood {
 public:
  explicit Flood(std::deque<SerialLine>& lines)
      : lines_(lines), end_(eventfd(0, EFD_CLOEXEC)), thread_([this] { scan(); }) {}
  ~Flood() {
    eventfd_write(end_, 1);
    thread_.join();
    close(end_);
  }
  Flood(const Flood&) = delete;
  Flood& operator=(const Flood&) = delete;

 private:
  void scan() {
    for (std::size_t turn = 0; lines_[turn % lines_.size()].send("4600051000057\r", end_);) ++turn;
  }

  std::deque<SerialLine>& lines_;
  const int end_;
  std::thread thread_;
};

void openPorts(SerialDriver& driver, int count) {
  for (std::int32_t port = kUsb1; port < kUsb1 + count; ++port) {
    driver.plugIn(port);
    driver.open(port);
  }
}

void awaitEvents(SerialDriver& driver, int count) {
  for (int i = 0; i < count; ++i) driver.event();
}

void scanOnce(SerialDriver& driver, SerialLine& line) {
  const std::u16string id = driver.open(kUsb1);
  line.send("1\r");
  EXPECT_EQ(driver.event().source, id);
  EXPECT_TRUE(driver.close(id));
}

TEST(SerialLife, TwoHundredOpeningsLeaveNothingBehind) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  // Warm up: the C library caches what the first openings allocate.
  for (int i = 0; i < 20; ++i) scanOnce(driver, line);
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  const std::size_t memory = rig::heapBytes();
  constexpr std::size_t kOpenings = 200;
  for (std::size_t i = 0; i < kOpenings; ++i) scanOnce(driver, line);
  rig::awaitThreadCount(threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
  // The smallest block that each opening could leak.
  EXPECT_LT(rig::heapBytes(), memory + kOpenings * 16);
  EXPECT_EQ(driver.component.memory().blocksOut(), 0);
}

TEST(SerialLife, DestroyingAComponentClosesItsDevices) {
  std::deque<SerialLine> lines;
  for (std::int32_t port = kUsb1; port < kUsb1 + 3; ++port) {
    lines.emplace_back(LineSetting::kFramed).link(rig::portPath(port));
  }
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  {
    rig::Driver driver;
    for (std::int32_t port = kUsb1; port < kUsb1 + 3; ++port) driver.openPort(port);
    lines.back().send("1\r");
    EXPECT_EQ(driver.event().source, u"InputDevice#3");
    EXPECT_EQ(rig::threadCount(), threads + 3);
  }
  rig::awaitThreadCount(threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

TEST(SerialLife, InitialisingAComponentAgainClosesItsDevices) {
  SerialDriver driver;
  const std::size_t threads = rig::settledThreadCount();
  openPorts(driver, 1);
  EXPECT_TRUE(driver.component.object().Init(&driver.component.connection()));
  rig::awaitThreadCount(threads);
  EXPECT_FALSE(driver.component.close(u"InputDevice#1"));
  // The numbering of openings continues.
  EXPECT_EQ(driver.open(kUsb1), u"InputDevice#2");
}

// How long a reader waits for bytes. One that ends only after its wait makes closing take as long,
// since the port has just been opened.
constexpr std::chrono::milliseconds kReaderWait{1000};

// The shortest of several measurements: load lengthens a time but never shortens it.
template <typename Action>
std::chrono::milliseconds quickest(int tries, const Action& action) {
  auto least = std::chrono::steady_clock::duration::max();
  for (int i = 0; i < tries; ++i) least = std::min(least, action());
  return std::chrono::duration_cast<std::chrono::milliseconds>(least);
}

TEST(SerialLife, AnIdleDeviceClosesAtOnce) {
  SerialDriver driver;
  driver.plugIn(kUsb1);
  const auto time = quickest(10, [&driver] {
    const std::u16string id = driver.open(kUsb1);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(driver.close(id));
    return std::chrono::steady_clock::now() - start;
  });
  std::cout << "an idle port closed in " << time.count() << " ms\n";
  EXPECT_LT(time, kReaderWait / 2);
}

TEST(SerialLife, AComponentWithManyIdlePortsIsDestroyedAtOnce) {
  constexpr std::int32_t kPorts = 144;
  std::deque<SerialLine> lines;
  for (std::int32_t port = kUsb1; port < kUsb1 + kPorts; ++port) {
    lines.emplace_back(LineSetting::kFramed).link(rig::portPath(port));
  }
  const auto time = quickest(3, [] {
    std::optional<rig::Driver> driver(std::in_place);
    for (std::int32_t port = kUsb1; port < kUsb1 + kPorts; ++port) driver->openPort(port);
    const auto start = std::chrono::steady_clock::now();
    driver.reset();
    return std::chrono::steady_clock::now() - start;
  });
  std::cout << kPorts << " ports destroyed in " << time.count() << " ms\n";
  // About 0.1 s on an idle machine.
  EXPECT_LT(time, kPorts * kReaderWait / 10);
}

TEST(SerialLife, ClosingWhileScansArrive) {
  SerialDriver driver;
  const std::size_t threads = rig::settledThreadCount();
  for (int round = 0; round < 20; ++round) {
    driver.lines.clear();
    openPorts(driver, 2);
    const Flood flood(driver.lines);
    awaitEvents(driver, 10);
    driver.closeAll();
    while (driver.component.events().take(std::chrono::milliseconds(0))) {
    }
  }
  rig::awaitThreadCount(threads);
}

TEST(SerialLife, AHostThatExitsWhileScansArriveExitsCleanly) {
  for (int run = 0; run < 5; ++run) {
    rig::inOwnProcess([] {
      // Never destroyed, as in a host that just exits.
      static auto& driver = *new SerialDriver;
      openPorts(driver, 3);
      static auto& flood = *new Flood(driver.lines);
      static_cast<void>(flood);
      awaitEvents(driver, 10);
    });
  }
}

TEST(SerialLife, TheLibraryCanBeLoadedAgainAndAgain) {
  for (int round = 0; round < 3; ++round) {
    SerialDriver driver;
    SerialLine& line = driver.plugIn(kUsb1);
    scanOnce(driver, line);
  }
}

TEST(SerialLife, TheLibraryCanBeUnloadedAfterItsComponents) {
  SerialDriver first;
  SerialDriver second(u"CardReaderDevice");
  openPorts(first, 1);
  // The third component and its reference to the library go; the others stay.
  { const rig::Driver third; }
  first.lines[0].send("1\r");
  EXPECT_EQ(first.event().data, u"1");
}

}  // namespace
