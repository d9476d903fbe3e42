#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

#include "devices/InputDeviceComPort.h"
#include "devices/ReadyWait.h"
#include "devices/SerialFamilies.h"
#include "tests/rig/Process.h"
#include "tests/rig/Threads.h"
#include "util/Handles.h"

namespace quorvel {
namespace {

constexpr unsigned long kForever = 0xFFFFFFFF;

struct TestPipe {
  TestPipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) ADD_FAILURE() << "no pipe";
    readEnd = FileDescriptor(ends[0]);
    writeEnd = FileDescriptor(ends[1]);
  }
  void write() { EXPECT_EQ(::write(writeEnd.get(), "x", 1), 1); }

  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

// Raises the limit so that descriptors may be as high as `highest`; false when the system forbids
// it.
bool allowDescriptors(rlim_t highest) {
  rlimit limit;
  getrlimit(RLIMIT_NOFILE, &limit);
  if (limit.rlim_max <= highest) return false;
  if (limit.rlim_cur > highest) return true;
  limit.rlim_cur = highest + 1;
  return setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

// Duplicates the descriptor to exactly this number.
FileDescriptor duplicateAs(const FileDescriptor& descriptor, int number) {
  EXPECT_EQ(::fcntl(number, F_GETFD), -1) << "descriptor " << number << " is in use";
  return FileDescriptor(::dup2(descriptor.get(), number));
}

// Redirects standard input for the length of a test.
class StandardInputFrom {
 public:
  explicit StandardInputFrom(const FileDescriptor& descriptor)
      : before_(::fcntl(0, F_DUPFD_CLOEXEC, 3)) {
    ::dup2(descriptor.get(), 0);
  }
  ~StandardInputFrom() {
    if (before_) {
      ::dup2(before_.get(), 0);
    } else {
      ::close(0);
    }
  }

 private:
  FileDescriptor before_;
};

TEST(WaitForReadyRead, TellsWhetherThereIsSomethingToRead) {
  TestPipe pipe;
  EXPECT_FALSE(waitForReadyRead(pipe.readEnd.get(), 0));
  EXPECT_FALSE(waitForReadyRead(pipe.readEnd.get(), 1));
  EXPECT_FALSE(waitForReadyRead(pipe.readEnd.get(), 1001));
  pipe.write();
  EXPECT_TRUE(waitForReadyRead(pipe.readEnd.get(), 0));
  EXPECT_TRUE(waitForReadyRead(pipe.readEnd.get(), 1000));
  EXPECT_TRUE(waitForReadyRead(pipe.readEnd.get(), kForever));
}

TEST(WaitForReadyRead, ConsumesNothing) {
  TestPipe pipe;
  pipe.write();
  ASSERT_TRUE(waitForReadyRead(pipe.readEnd.get(), 0));
  char byte = 0;
  EXPECT_EQ(::read(pipe.readEnd.get(), &byte, 1), 1);
  EXPECT_EQ(byte, 'x');
}

TEST(WaitForReadyRead, AnEndOfFileIsReadable) {
  TestPipe pipe;
  pipe.writeEnd.reset();
  EXPECT_TRUE(waitForReadyRead(pipe.readEnd.get(), 0));
  EXPECT_TRUE(waitForReadyRead(pipe.readEnd.get(), kForever));
}

TEST(WaitForReadyRead, WaitsForItsOwnDescriptorOnly) {
  TestPipe quiet;
  TestPipe loud;
  loud.write();
  EXPECT_FALSE(waitForReadyRead(quiet.readEnd.get(), 0));
  EXPECT_TRUE(waitForReadyRead(loud.readEnd.get(), 0));
}

TEST(WaitForReadyRead, DescriptorZeroIsNeverReady) {
  TestPipe pipe;
  pipe.write();
  const StandardInputFrom standardInput(pipe.readEnd);
  EXPECT_FALSE(waitForReadyRead(0, 0));
  EXPECT_FALSE(waitForReadyRead(0, 1000));
  EXPECT_FALSE(waitForReadyRead(0, kForever));
}

TEST(WaitForReadyRead, AClosedDescriptorIsNeverReady) {
  TestPipe pipe;
  const int closed = pipe.readEnd.get();
  pipe.readEnd.reset();
  for (const int descriptor : {closed, -1, -2, INT_MIN, 1023, 1024, 100000, INT_MAX}) {
    EXPECT_FALSE(waitForReadyRead(descriptor, kForever)) << descriptor;
  }
}

TEST(WaitForReadyRead, DescriptorsOfAnyNumberWork) {
  if (!allowDescriptors(4096)) GTEST_SKIP() << "the system allows no such descriptors";
  for (const int number : {31, 32, 33, 63, 64, 65, 1022, 1023, 1024, 1025, 2047, 2048, 4096}) {
    SCOPED_TRACE(testing::Message() << "descriptor " << number);
    TestPipe pipe;
    const FileDescriptor high = duplicateAs(pipe.readEnd, number);
    EXPECT_FALSE(waitForReadyRead(high.get(), 0));
    pipe.write();
    EXPECT_TRUE(waitForReadyRead(high.get(), 0));
    EXPECT_TRUE(waitForReadyRead(high.get(), kForever));
  }
}

TEST(WaitForReadyRead, AnUnlimitedWaitEndsWhenDataArrives) {
  TestPipe pipe;
  std::thread writer([&] { pipe.write(); });
  EXPECT_TRUE(waitForReadyRead(pipe.readEnd.get(), kForever));
  writer.join();
}

std::atomic<int> interruptionCount = 0;

TEST(WaitForReadyRead, GoesOnAfterASignal) {
  struct sigaction count = {};
  struct sigaction before = {};
  count.sa_handler = [](int) { ++interruptionCount; };  // and no SA_RESTART
  sigaction(SIGUSR1, &count, &before);
  TestPipe pipe;
  // Waits for the waiter to sleep again rather than for the handler to run: the thread sanitizer
  // may defer the handler until after the wait.
  std::thread interrupter([&, waiter = pthread_self(), waiterId = gettid()] {
    for (int sent = 0; sent < 100; ++sent) {
      const long long sleeps = rig::sleepCount(waiterId);
      pthread_kill(waiter, SIGUSR1);
      rig::await("the wait to go on", [&] { return rig::sleepCount(waiterId) > sleeps; });
    }
    pipe.write();
  });
  EXPECT_TRUE(waitForReadyRead(pipe.readEnd.get(), kForever));
  interrupter.join();
  sigaction(SIGUSR1, &before, nullptr);
  EXPECT_GT(interruptionCount, 0);
}

// Ports that no machine has.
const std::uint32_t kMissingPorts[] = {0, 100129, UINT32_MAX};

TEST(InputDeviceComPort, DoesNotStartOnAMissingPort) {
  for (const std::uint32_t port : kMissingPorts) {
    SCOPED_TRACE(testing::Message() << "port " << port);
    ASSERT_FALSE(std::filesystem::exists(devicePathOf(port)));
    InputDeviceComPortFactory factory;
    factory.port = port;
    InputDeviceComPort device([](const std::wstring&) { ADD_FAILURE() << "a scan from nowhere"; });
    EXPECT_FALSE(device.start(factory));
  }
}

TEST(InputDeviceComPort, AFailedStartLeavesNoThreadAndNoDescriptor) {
  const std::size_t threads = rig::threadCount();
  const std::size_t descriptors = rig::descriptorCount();
  InputDeviceComPortFactory factory;
  for (const std::uint32_t port : kMissingPorts) {
    factory.port = port;
    for (int i = 0; i < 100; ++i) EXPECT_EQ(factory.create([](const std::wstring&) {}), nullptr);
  }
  EXPECT_EQ(rig::threadCount(), threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

TEST(InputDeviceComPort, AFailedStartReleasesTheCallback) {
  const auto kept = std::make_shared<int>();
  InputDeviceComPortFactory factory;
  factory.port = 100129;
  EXPECT_EQ(factory.create([kept](const std::wstring&) {}), nullptr);
  EXPECT_EQ(kept.use_count(), 1);
}

TEST(InputDeviceComPort, ArbitraryFactoryValuesFailGracefully) {
  InputDeviceComPortFactory factory;
  factory.port = 100129;
  factory.speed = UINT32_MAX;
  factory.dataBits = UINT32_MAX;
  factory.stopBit = UINT32_MAX;
  factory.timeoutCOM = INT_MIN;
  factory.suffix = std::wstring(10000, wchar_t(-1));
  factory.comEncoding = std::wstring(10000, L'x');
  EXPECT_EQ(factory.create({}), nullptr);
}

TEST(InputDeviceComPort, CanBeDestroyedWithoutHavingBeenStarted) {
  const InputDeviceComPort device([](const std::wstring&) {});
}

}  // namespace
}  // namespace quorvel
