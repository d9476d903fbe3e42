// A scanner that is unplugged and plugged in again.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "tests/rig/Program.h"
#include "tests/rig/RawDevice.h"
#include "tests/rig/Threads.h"
#include "tests/rig/UsbPort.h"
#include "tests/rig/WithoutPrivilege.h"

namespace {

using namespace std::chrono_literals;
using rig::kUsb1;
using rig::SerialDriver;
using terminal::LineSetting;
using terminal::SerialLine;
using Clock = std::chrono::steady_clock;

long long milliseconds(Clock::duration time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

// A scanner at one port, plugged in from the beginning.
class PluggableScanner {
 public:
  explicit PluggableScanner(std::int32_t port = kUsb1, LineSetting setting = LineSetting::kFramed)
      : path_(rig::portPath(port)), setting_(setting) {
    plugIn();
  }

  void plugIn() { line_.emplace(setting_).link(path_); }
  void unplug() { line_.reset(); }

  void awaitReader() {
    if (!line_->waitForReader(-1, rig::kPatience))
      throw std::runtime_error("nobody opens the port");
  }
  void send(const std::string& bytes) { line_->send(bytes); }
  const std::string& path() const { return path_; }
  SerialLine& line() { return *line_; }

 private:
  const std::string path_;
  const LineSetting setting_;
  std::optional<SerialLine> line_;
};

void expectScan(SerialDriver& driver, PluggableScanner& scanner, const std::u16string& id,
                const std::string& scan = "scan") {
  scanner.send(scan + "\r");
  const terminal::Event event = driver.event();
  EXPECT_EQ(event.source, id);
  EXPECT_EQ(event.data, std::u16string(scan.begin(), scan.end()));
}

void expectNothingMore(SerialDriver& driver) {
  EXPECT_EQ(driver.component.events().take(0ms), std::nullopt);
}

TEST(SerialUnplug, ScansGoOnUnderTheSameIdentifier) {
  PluggableScanner scanner;
  SerialDriver driver;
  const std::u16string id = driver.open(kUsb1);
  scanner.awaitReader();
  expectScan(driver, scanner, id);
  auto quickest = Clock::duration::max();
  for (int i = 0; i < 5; ++i) {
    scanner.unplug();
    scanner.plugIn();
    const auto start = Clock::now();
    scanner.awaitReader();
    quickest = std::min(quickest, Clock::now() - start);
    expectScan(driver, scanner, id);
  }
  std::cout << "back after " << milliseconds(quickest) << " ms\n";
  EXPECT_LT(quickest, 1s);
  expectNothingMore(driver);
}

TEST(SerialUnplug, TheSpeedIsSetAgain) {
  PluggableScanner scanner;
  SerialDriver driver;
  driver.component.setParameter(u"Speed", 57600);
  driver.open(kUsb1);
  scanner.awaitReader();
  scanner.unplug();
  scanner.plugIn();
  scanner.awaitReader();
  EXPECT_EQ(rig::outputOf({"stty", "-F", scanner.path(), "speed"}), "57600\n");
}

TEST(SerialUnplug, TheDescriptorIsClosedAtOnce) {
  PluggableScanner scanner;
  SerialDriver driver;
  driver.open(kUsb1);
  scanner.awaitReader();
  const std::string port = scanner.line().port();
  const std::filesystem::path descriptors = "/proc/self/fd";
  const auto isOpen = [&] {
    for (const auto& entry : std::filesystem::directory_iterator(descriptors)) {
      std::error_code gone;
      if (std::filesystem::read_symlink(entry, gone).string().starts_with(port)) return true;
    }
    return false;
  };
  EXPECT_TRUE(isOpen());
  scanner.unplug();
  rig::await("the end of a dead descriptor", [&] { return !isOpen(); });
  // Its number is free for the next one, as soon as the reader's call has come to its end.
  rig::await("the old name", [&] { return SerialLine(LineSetting::kFramed).port() == port; });
  scanner.plugIn();
  EXPECT_EQ(scanner.line().port(), port);
}

TEST(SerialUnplug, AnUnfinishedMessageIsDropped) {
  // Also without a suffix, where the end of a burst ends a message.
  for (const std::int32_t suffix : {13, -1}) {
    PluggableScanner scanner(kUsb1, LineSetting::kRaw);
    SerialDriver driver;
    terminal::EventQueue events;
    rig::GatedConnection gate(events, u"hold");
    driver.component.object().Init(&gate);
    driver.component.setParameter(u"Suffix", suffix);
    driver.open(kUsb1);
    scanner.awaitReader();
    scanner.send(suffix < 0 ? "hold" : "hold\r");
    gate.awaitHeld();
    scanner.send("123");
    scanner.unplug();
    scanner.plugIn();
    gate.release();
    scanner.awaitReader();
    scanner.send(suffix < 0 ? "45" : "45\r");
    EXPECT_EQ(events.take(rig::kPatience)->data, u"45");
    driver.closeAll();
  }
}

TEST(SerialUnplug, ClosingDoesNotWaitForTheScanner) {
  constexpr std::int32_t kPorts = 32;
  auto quickest = Clock::duration::max();
  for (int i = 0; i < 3; ++i) {
    std::deque<PluggableScanner> scanners;
    std::optional<rig::Driver> driver(std::in_place);
    for (std::int32_t port = kUsb1; port < kUsb1 + kPorts; ++port) {
      scanners.emplace_back(port);
      driver->openPort(port);
    }
    const std::size_t descriptors = rig::descriptorCount();
    scanners.clear();
    rig::await("lost ports",
               [&] { return rig::descriptorCount() <= descriptors - 2 * kPorts + 1; });
    const auto start = Clock::now();
    driver.reset();
    quickest = std::min(quickest, Clock::now() - start);
  }
  std::cout << kPorts << " lost ports closed in " << milliseconds(quickest) << " ms\n";
  // A reader that is not woken waits for a second or more.
  EXPECT_LT(quickest, kPorts * 1000ms / 10);
}

TEST(SerialUnplug, ClosingAtTheMomentOfUnplugging) {
  SerialDriver driver;
  PluggableScanner scanner;
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  for (int i = 0; i < 100; ++i) {
    driver.open(kUsb1);
    std::thread unplugging([&scanner] {
      scanner.unplug();
      scanner.plugIn();
    });
    driver.closeAll();
    unplugging.join();
  }
  rig::awaitThreadCount(threads);
  // After its first loss a process keeps one inotify descriptor.
  EXPECT_LE(rig::descriptorCount(), descriptors + 1);
}

TEST(SerialUnplug, APortThatMayNotBeOpenedYetIsTriedAgain) {
  PluggableScanner scanner;
  SerialDriver driver;
  std::u16string id;
  {
    const rig::WithoutPrivilege withoutPrivilege;
    id = driver.open(kUsb1);
  }
  scanner.awaitReader();
  scanner.unplug();
  SerialLine line(LineSetting::kFramed);
  ASSERT_EQ(chmod(line.port().c_str(), 0), 0);
  line.link(scanner.path());
  EXPECT_FALSE(line.waitForReader(-1, 1200ms));
  ASSERT_EQ(chmod(line.port().c_str(), 0600), 0);
  ASSERT_TRUE(line.waitForReader(-1, rig::kPatience));
  line.send("scan\r");
  EXPECT_EQ(driver.event().source, id);
}

TEST(SerialUnplug, AFileThatIsNotADeviceIsNotRead) {
  PluggableScanner scanner;
  SerialDriver driver;
  std::u16string id;
  const pid_t reader = rig::threadAddedBy([&] { id = driver.open(kUsb1); });
  scanner.awaitReader();
  scanner.unplug();
  const auto awaitTwoTries = [reader] {
    const long long sleeps = rig::sleepCount(reader);
    rig::await("two more tries", [&] { return rig::sleepCount(reader) > sleeps + 1; });
  };
  std::ofstream(scanner.path()) << "from a file\r";
  awaitTwoTries();
  std::filesystem::remove(scanner.path());
  std::filesystem::create_directory(scanner.path());
  awaitTwoTries();
  std::filesystem::remove(scanner.path());
  expectNothingMore(driver);
  scanner.plugIn();
  scanner.awaitReader();
  expectScan(driver, scanner, id);
}

TEST(SerialUnplug, TheHostsNewDeviceTakesThePortOver) {
  PluggableScanner scanner;
  SerialDriver driver;
  const std::u16string lost = driver.open(kUsb1);
  scanner.awaitReader();
  scanner.unplug();
  scanner.plugIn();
  // The lost device may still be waiting or be back already.
  const std::u16string second = driver.open(kUsb1);
  for (int i = 0; i < 50; ++i) expectScan(driver, scanner, second);

  scanner.unplug();
  scanner.plugIn();
  scanner.awaitReader();
  expectScan(driver, scanner, second);
  const std::u16string third = driver.open(kUsb1);
  for (int i = 0; i < 50; ++i) expectScan(driver, scanner, third);

  // Devices that have given up the port stay away, and can be closed.
  scanner.unplug();
  scanner.plugIn();
  scanner.awaitReader();
  for (int i = 0; i < 50; ++i) expectScan(driver, scanner, third);
  EXPECT_TRUE(driver.close(lost));
  EXPECT_TRUE(driver.close(second));
  expectScan(driver, scanner, third);
}

TEST(SerialUnplug, ADeviceThatHasNotNoticedItsLossLeavesToo) {
  PluggableScanner scanner;
  SerialDriver driver;
  terminal::EventQueue events;
  rig::GatedConnection gate(events, u"hold");
  driver.component.object().Init(&gate);
  driver.open(kUsb1);
  scanner.awaitReader();
  scanner.send("hold\r");
  gate.awaitHeld();
  scanner.unplug();
  scanner.plugIn();
  const std::u16string second = driver.open(kUsb1);
  gate.release();
  for (int i = 0; i < 50; ++i) {
    scanner.send("scan\r");
    EXPECT_EQ(events.take(rig::kPatience)->source, second);
  }
  driver.closeAll();
}

TEST(SerialUnplug, DevicesOfAPortThatWasNeverLostShareIt) {
  PluggableScanner scanner;
  SerialDriver driver;
  const std::u16string first = driver.open(kUsb1);
  const std::u16string second = driver.open(kUsb1);
  EXPECT_TRUE(driver.close(second));
  expectScan(driver, scanner, first);
}

TEST(SerialUnplug, AThousandTimesWithAScanEach) {
  PluggableScanner scanner;
  SerialDriver driver;
  const std::u16string id = driver.open(kUsb1);
  scanner.awaitReader();
  std::size_t threads = 0, descriptors = 0, memory = 0;
  constexpr int kWarmUp = 20;
  constexpr int kCycles = 1000;
  const auto start = Clock::now();
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    if (cycle == kWarmUp) {
      threads = rig::settledThreadCount();
      descriptors = rig::descriptorCount();
      memory = rig::heapBytes();
    }
    expectScan(driver, scanner, id, "scan " + std::to_string(cycle));
    scanner.unplug();
    scanner.plugIn();
    scanner.awaitReader();
  }
  std::cout << kCycles << " times in " << milliseconds(Clock::now() - start) << " ms\n";
  EXPECT_EQ(rig::settledThreadCount(), threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
  // The smallest block that each cycle could leak.
  EXPECT_LT(rig::heapBytes(), memory + (kCycles - kWarmUp) * 16);
  expectNothingMore(driver);
}

// A port without a chip behind it can be opened, but its first read fails.
TEST(SerialUnplug, DeadPortsCostNextToNothing) {
  constexpr std::int32_t kPorts = 32;
  SerialDriver driver;
  std::vector<pid_t> readers;
  for (std::int32_t port = kUsb1; port < kUsb1 + kPorts; ++port) {
    std::filesystem::create_symlink("/dev/null", rig::portPath(port));
    readers.push_back(rig::threadAddedBy([&] { driver.open(port); }));
  }
  const auto awaitRests = [&readers](long long count) {
    std::vector<long long> ends;
    for (const pid_t reader : readers) ends.push_back(rig::sleepCount(reader) + count);
    for (std::size_t i = 0; i < readers.size(); ++i) {
      rig::await("a reader to sleep", [&] { return rig::sleepCount(readers[i]) >= ends[i]; });
    }
  };
  // They are retried after 1, 2 and 4 seconds, and every 5 seconds from then on.
  awaitRests(3);
  std::chrono::nanoseconds used{0};
  long long reads = 0;
  const auto account = [&](int sign) {
    for (const pid_t reader : readers) {
      used += sign * rig::processorTime(reader);
      reads += sign * rig::readingOf(reader).calls;
    }
  };
  account(-1);
  const auto start = Clock::now();
  awaitRests(2);
  account(+1);
  const std::chrono::duration<double> time = Clock::now() - start;
  const double share = std::chrono::duration<double>(used).count() / time.count();
  std::cout << kPorts << " dead ports use " << share * 100 << " % of a core, and read "
            << static_cast<double>(reads) / kPorts / time.count() << " times a second each\n";
  EXPECT_LT(share, 0.01);  // below 0.1 % without a sanitizer or other load
  // Each retry reads the port once and the inotify descriptor a few times.
  EXPECT_LT(static_cast<double>(reads), kPorts * 4 * time.count());
  for (std::int32_t port = kUsb1; port < kUsb1 + kPorts; ++port) {
    std::filesystem::remove(rig::portPath(port));
  }
  // A scanner that takes the place of a dead port is read at once.
  PluggableScanner scanner;
  scanner.awaitReader();
  expectScan(driver, scanner, driver.ids[0]);
}

// On a cooked line, byte 4 ends a read like an end of file.
TEST(SerialUnplug, AnEndOfFileCharacterIsNotAnUnplug) {
  SerialDriver driver;
  PluggableScanner scanner(kUsb1, LineSetting::kCooked);
  driver.component.setParameter(u"Suffix", 10);
  driver.open(kUsb1);
  scanner.awaitReader();
  const auto start = Clock::now();
  for (int i = 0; i < 20; ++i) {
    scanner.send("\x04scan\r");
    EXPECT_EQ(driver.event().data, u"scan");
  }
  // A reader that took it for an unplugging would wait a second each time.
  EXPECT_LT(Clock::now() - start, 10s);
}

}  // namespace
