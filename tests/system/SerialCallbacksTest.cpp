// What hosts do in the event of a scan, on the reader's thread.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/time.h>

#include <atomic>
#include <functional>
#include <memory>
#include <semaphore>

#include "tests/rig/ActingConnection.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"
#include "tests/rig/UsbPort.h"

namespace {

using rig::ActingConnection;
using rig::kUsb1;
using rig::SerialDriver;
using terminal::SerialLine;

// Holds an action back until the test has done its part: a component is used on one thread at a
// time.
class Turn {
 public:
  void allow() { allowed_.release(); }
  std::function<void()> before(std::function<void()> action) {
    return [this, action = std::move(action)] {
      allowed_.acquire();
      action();
    };
  }

 private:
  std::binary_semaphore allowed_{0};
};

// A driver whose events go through an acting connection.
struct ActingDriver : SerialDriver {
  explicit ActingDriver(std::function<void()> action)
      : connection(acted, turn.before(std::move(action))) {
    component.object().Init(&connection);
  }
  ~ActingDriver() { closeAll(); }

  terminal::Event nextEvent() {
    std::optional<terminal::Event> event = acted.take(rig::kPatience);
    if (!event) throw std::runtime_error("no event came");
    return *event;
  }

  Turn turn;
  terminal::EventQueue acted;
  ActingConnection connection;
};

TEST(SerialCallbacks, ClosesItsOwnDevice) {
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  {
    std::u16string id;
    bool closed = false;
    ActingDriver* driver = nullptr;
    ActingDriver acting([&] { closed = driver->close(id); });
    driver = &acting;
    SerialLine& line = acting.plugIn(kUsb1);
    id = acting.open(kUsb1);
    // The second scan is already waiting when the device is closed.
    line.send("act\rtoo late\r");
    acting.turn.allow();
    EXPECT_EQ(acting.nextEvent().data, u"act");
    EXPECT_TRUE(closed);
    rig::awaitThreadCount(threads);
    EXPECT_EQ(acting.acted.take(std::chrono::milliseconds(0)), std::nullopt);
    EXPECT_FALSE(acting.component.close(id));
  }
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

TEST(SerialCallbacks, OpensItsPortAgain) {
  std::u16string first, second;
  ActingDriver* driver = nullptr;
  ActingDriver acting([&] {
    driver->close(first);
    second = driver->open(kUsb1);
  });
  driver = &acting;
  SerialLine& line = acting.plugIn(kUsb1);
  first = acting.open(kUsb1);
  line.send("act\r");
  acting.turn.allow();
  EXPECT_EQ(acting.nextEvent().source, first);
  for (int scan = 0; scan < 10; ++scan) {
    line.send("scan\r");
    EXPECT_EQ(acting.nextEvent().source, second);
  }
}

TEST(SerialCallbacks, DestroysItsComponent) {
  terminal::ComponentLibrary library(rig::libraryPath());
  SerialLine lines[] = {SerialLine(terminal::LineSetting::kFramed),
                        SerialLine(terminal::LineSetting::kFramed)};
  lines[0].link(rig::portPath(kUsb1));
  lines[1].link(rig::portPath(kUsb1 + 1));
  const std::size_t threads = rig::settledThreadCount();
  terminal::EventQueue events;
  const std::size_t descriptors = rig::descriptorCount();

  std::unique_ptr<terminal::Component> component;
  Turn turn;
  ActingConnection connection(events, turn.before([&component] { component.reset(); }));
  component = std::make_unique<terminal::Component>(library, u"InputDevice");
  component->object().Init(&connection);
  for (const std::int32_t port : {kUsb1, kUsb1 + 1}) {
    component->setParameter(u"Port", port);
    ASSERT_NE(component->open(), std::nullopt);
  }
  lines[0].send("act\rtoo late\r");
  turn.allow();
  EXPECT_EQ(events.take(rig::kPatience)->data, u"act");
  rig::awaitThreadCount(threads);
  EXPECT_EQ(component, nullptr);
  EXPECT_EQ(events.take(std::chrono::milliseconds(0)), std::nullopt);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

TEST(SerialCallbacks, EndsItsThread) {
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  {
    ActingDriver driver([] { pthread_exit(nullptr); });
    SerialLine& line = driver.plugIn(kUsb1);
    const std::u16string id = driver.open(kUsb1);
    line.send("act\r");
    driver.turn.allow();
    rig::awaitThreadCount(threads);
    EXPECT_TRUE(driver.close(id));
    const std::u16string again = driver.open(kUsb1);
    line.send("scan\r");
    EXPECT_EQ(driver.nextEvent().source, again);
  }
  rig::awaitThreadCount(threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

bool blocksHere(int signal) {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, signal) == 1;
}

TEST(SerialCallbacks, RunWithTheSignalMaskOfTheThreadThatOpened) {
  bool usr1 = true, usr2 = false, fault = true;
  ActingDriver driver([&] {
    usr1 = blocksHere(SIGUSR1);
    usr2 = blocksHere(SIGUSR2);
    fault = blocksHere(SIGSEGV);
  });
  SerialLine& line = driver.plugIn(kUsb1);
  sigset_t blocked, before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR2);
  sigaddset(&blocked, SIGSEGV);
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  const pid_t reader = rig::threadAddedBy([&] { driver.open(kUsb1); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  line.send("act\rscan\r");
  driver.turn.allow();
  driver.nextEvent();
  EXPECT_FALSE(usr1);
  EXPECT_TRUE(usr2);
  EXPECT_FALSE(fault);
  // After the next event the reader waits again, with signals blocked but not faults.
  driver.nextEvent();
  rig::await("the reader to block signals", [reader] { return rig::blocks(reader, SIGUSR1); });
  EXPECT_FALSE(rig::blocks(reader, SIGSEGV));
}

std::atomic<int> faults = 0;

TEST(SerialCallbacks, FaultIntoTheHostsOwnHandler) {
  ActingDriver driver([] { raise(SIGFPE); });
  SerialLine& line = driver.plugIn(kUsb1);
  struct sigaction count = {}, before = {};
  count.sa_handler = [](int) { ++faults; };
  sigaction(SIGFPE, &count, &before);
  driver.open(kUsb1);
  line.send("act\r");
  driver.turn.allow();
  EXPECT_EQ(driver.nextEvent().data, u"act");
  EXPECT_EQ(faults, 1);
  sigaction(SIGFPE, &before, nullptr);
}

// A timer fires every millisecond, and its handler is installed without SA_RESTART.
TEST(SerialCallbacks, LoseNothingWhenSignalsInterruptTheHost) {
  rig::inOwnProcess([] {
    struct sigaction interrupt = {};
    interrupt.sa_handler = [](int) {};
    sigaction(SIGALRM, &interrupt, nullptr);
    const itimerval everyMillisecond = {{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    SerialDriver driver;
    SerialLine& line = driver.plugIn(kUsb1);
    driver.open(kUsb1);
    for (int scan = 0; scan < 500; ++scan) {
      const std::string data = "scan " + std::to_string(scan);
      line.send(data + "\r");
      EXPECT_EQ(driver.event().data, std::u16string(data.begin(), data.end()));
    }
  });
}

}  // namespace
