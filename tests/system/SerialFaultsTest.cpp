// Ports that break, and hosts that run short of a resource: nothing hangs, spins or leaks.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "tests/rig/Patience.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/ThreadStart.h"
#include "tests/rig/Threads.h"
#include "tests/rig/UsbPort.h"

namespace {

using namespace std::chrono_literals;
using rig::kUsb1;
using rig::SerialDriver;
using terminal::LineSetting;
using terminal::SerialLine;

void expectScan(SerialDriver& driver, SerialLine& line, const std::u16string& id) {
  line.send("scan\r");
  const terminal::Event event = driver.event();
  EXPECT_EQ(event.source, id);
  EXPECT_EQ(event.data, u"scan");
}

// Something other than a serial line at the path of a port.
class StrangePort {
 public:
  explicit StrangePort(std::int32_t port) : path_(rig::portPath(port)) {}
  ~StrangePort() { std::filesystem::remove_all(path_); }
  StrangePort(const StrangePort&) = delete;
  StrangePort& operator=(const StrangePort&) = delete;
  const std::string& path() const { return path_; }

 private:
  const std::string path_;
};

TEST(SerialFaults, TheReaderOfADeadPortSleepsAndCanBeClosed) {
  SerialDriver driver;
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  const StrangePort folder(130);
  std::filesystem::create_directory(folder.path());
  const StrangePort endOfFile(131);
  std::filesystem::create_symlink("/dev/null", endOfFile.path());

  std::optional<SerialLine> unplugged(LineSetting::kFramed);
  unplugged->link(rig::portPath(129));
  std::optional<SerialLine> unpluggedRaw(LineSetting::kRaw);
  unpluggedRaw->link(rig::portPath(132));
  std::vector<pid_t> readers;
  for (std::int32_t port = 129; port <= 132; ++port) {
    // The last one has no suffix, but losing it must still not deliver a message.
    driver.component.setParameter(u"Suffix", port == 132 ? -1 : 13);
    readers.push_back(rig::threadAddedBy([&] { driver.open(port); }));
  }
  unplugged.reset();
  unpluggedRaw.reset();

  constexpr long long kSteps = 2;  // of the reader, a second each
  std::vector<long long> sleeps;
  std::vector<std::chrono::nanoseconds> used;
  for (const pid_t reader : readers) {
    sleeps.push_back(rig::sleepCount(reader));
    used.push_back(rig::processorTime(reader));
  }
  for (std::size_t i = 0; i < readers.size(); ++i) {
    // A reader that does not rest never gets here, or has used most of the time by then.
    rig::await("a reader to sleep",
               [&] { return rig::sleepCount(readers[i]) > sleeps[i] + kSteps; });
    EXPECT_LT(rig::processorTime(readers[i]) - used[i], kSteps * 1000ms / 4) << "port " << 129 + i;
  }
  SerialLine& alive = driver.plugIn(133);
  driver.component.setParameter(u"Suffix", 13);
  expectScan(driver, alive, driver.open(133));
  driver.closeAll();
  rig::awaitThreadCount(threads);
  // One for the line that is still plugged in, and the inotify descriptor, which a process keeps.
  EXPECT_LE(rig::descriptorCount(), descriptors + 2);
}

TEST(SerialFaults, AScannerThatIsPluggedInAgainWorksWhenItsPortIsOpenedAgain) {
  SerialDriver driver;
  std::optional<SerialLine> line(LineSetting::kFramed);
  line->link(rig::portPath(kUsb1));
  const std::u16string first = driver.open(kUsb1);
  expectScan(driver, *line, first);
  line.reset();
  driver.component.setParameter(u"Port", kUsb1);
  EXPECT_EQ(driver.component.open(), std::nullopt);
  SerialLine& again = driver.plugIn(kUsb1);
  const std::u16string third = driver.open(kUsb1);
  EXPECT_EQ(third, u"InputDevice#3");
  expectScan(driver, again, third);
  EXPECT_TRUE(driver.close(first));
  expectScan(driver, again, third);
}

// Raises how many files this process may have open.
class ManyFiles {
 public:
  explicit ManyFiles(int count) {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit raised = before_;
    raised.rlim_cur = std::max<rlim_t>(raised.rlim_cur, static_cast<rlim_t>(count) + 100);
    setrlimit(RLIMIT_NOFILE, &raised);
    while (static_cast<int>(open_.size()) < count) {
      const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
      if (descriptor < 0) throw std::runtime_error("this process may not open enough files");
      open_.push_back(descriptor);
    }
  }
  ~ManyFiles() {
    for (const int descriptor : open_) ::close(descriptor);
    setrlimit(RLIMIT_NOFILE, &before_);
  }
  ManyFiles(const ManyFiles&) = delete;
  ManyFiles& operator=(const ManyFiles&) = delete;

 private:
  rlimit before_;
  std::vector<int> open_;
};

TEST(SerialFaults, AHostWithManyFilesOpen) {
  const ManyFiles files(1100);
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  expectScan(driver, line, driver.open(kUsb1));
}

TEST(SerialFaults, AHostWithNoDescriptorLeft) {
  SerialDriver driver;
  driver.plugIn(kUsb1);
  driver.component.setParameter(u"Port", kUsb1);
  rlimit before;
  getrlimit(RLIMIT_NOFILE, &before);
  rlimit none = before;
  none.rlim_cur = 0;
  setrlimit(RLIMIT_NOFILE, &none);
  const std::optional<std::u16string> id = driver.component.open();
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(id, std::nullopt);
}

TEST(SerialFaults, AHostWithoutStandardInput) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  const int kept = dup(STDIN_FILENO);
  ::close(STDIN_FILENO);
  const std::u16string id = driver.open(kUsb1);
  EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
  expectScan(driver, line, id);
  EXPECT_TRUE(driver.close(id));
  if (kept < 0) return;
  dup2(kept, STDIN_FILENO);
  ::close(kept);
}

TEST(SerialFaults, AHostThatCannotStartAThread) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  driver.component.setParameter(u"Port", kUsb1);
  const std::size_t descriptors = rig::descriptorCount();
  {
    const rig::NoThreads none;
    EXPECT_EQ(driver.component.open(), std::nullopt);
  }
  EXPECT_EQ(rig::descriptorCount(), descriptors);
  expectScan(driver, line, driver.open(kUsb1));
}

// An exception from the host costs it that scan but not the next one.
TEST(SerialFaults, AHostThatThrows) {
  struct Throwing : terminal::HostConnection {
    using HostConnection::HostConnection;
    bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override {
      if (std::u16string(data) == u"throw") throw std::runtime_error("not today");
      return HostConnection::ExternalEvent(source, message, data);
    }
  };
  terminal::EventQueue events;
  Throwing connection(events);
  SerialDriver driver;
  driver.component.object().Init(&connection);
  SerialLine& line = driver.plugIn(kUsb1);
  driver.open(kUsb1);
  line.send("throw\rscan\r");
  EXPECT_EQ(events.take(rig::kPatience)->data, u"scan");
}

// Asynchronous signals belong to the host's own threads.
TEST(SerialFaults, ReadersLeaveSignalsToTheHost) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  std::u16string id;
  const pid_t reader = rig::threadAddedBy([&] { id = driver.open(kUsb1); });
  // Once a scan has come the thread no longer starts, during which the C library blocks everything.
  // It may still be on its way out of the callback, which runs with the host's own mask.
  expectScan(driver, line, id);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGCHLD, SIGUSR1, SIGALRM, SIGRTMIN}) {
    rig::await(strsignal(signal), [&] { return rig::blocks(reader, signal); });
  }
}

}  // namespace
