#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "devices/InputDeviceComPort.h"
#include "devices/SerialReader.h"
#include "tests/rig/BeforeEachByte.h"
#include "tests/rig/FailingAllocation.h"
#include "tests/rig/Patience.h"
#include "tests/rig/ScratchFolder.h"
#include "tests/unit/devices/Messages.h"
#include "tools/common/SerialLine.h"
#include "tools/host/DroppedMessages.h"
#include "util/PosixThread.h"

namespace quorvel {
namespace {

using terminal::LineSetting;
using terminal::SerialLine;

constexpr std::uint32_t kUsb1 = 129;
const std::string kUsb1Path = "/dev/ttyUSB0";

InputDeviceComPortFactory usb1() {
  InputDeviceComPortFactory factory;
  factory.port = kUsb1;
  return factory;
}

// A reader that runs on the test's own thread.
struct SerialReading {
  SerialReading() { line.link(kUsb1Path); }

  SerialLine line{LineSetting::kFramed};
  Messages messages;
  SerialReader reader{usb1(), messages.callback()};
};

TEST(SerialReader, FinishesThePassUnderWayWhenItIsStopped) {
  SerialReading run;
  ASSERT_TRUE(run.reader.open());
  run.line.send("123\r456\r");
  int bytes = 0;
  const rig::BeforeEachByte stop([&] {
    if (++bytes == 2) run.reader.stop();
  });
  run.reader.run();
  EXPECT_EQ(run.messages.take(), L"123");
  EXPECT_EQ(run.messages.count(), 0U);
}

TEST(SerialReader, StopsDuringAnEndlessBurst) {
  std::filesystem::create_symlink("/dev/zero", kUsb1Path);
  Messages messages;
  InputDeviceComPortFactory factory = usb1();
  factory.suffix.clear();
  SerialReader reader(factory, messages.callback());
  const bool opened = reader.open();
  std::filesystem::remove(kUsb1Path);
  ASSERT_TRUE(opened);
  bool first = true;
  const rig::BeforeEachByte stop([&] {
    if (std::exchange(first, false)) reader.stop();
  });
  reader.run();
  EXPECT_EQ(messages.count(), 0U) << "an unfinished message was delivered";
}

TEST(SerialReader, DropsAMessageUpToItsEndWhenMemoryRunsOut) {
  SerialReading run;
  ASSERT_TRUE(run.reader.open());
  const std::string tooLong(100, 'A');
  run.line.send(tooLong + "\rnext\r");
  std::optional<rig::FailingAllocation> noMemory;
  std::size_t bytes = 0;
  const rig::BeforeEachByte shortage([&] {
    ++bytes;
    if (bytes == 10) noMemory.emplace();
    if (bytes == tooLong.size()) noMemory.reset();
    if (bytes == tooLong.size() + 6) run.reader.stop();
  });
  run.reader.run();
  EXPECT_EQ(run.messages.take(), L"next");
  EXPECT_EQ(run.messages.count(), 0U);
}

TEST(SerialReader, DropsAMessageOfMoreThanAMebibyteUpToItsEnd) {
  const std::string longest(1 << 20, 'A');
  const std::string scans = longest + '\r' + longest + "B\rnext\r";
  const rig::ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "scans";
  std::ofstream(file) << scans;
  std::filesystem::create_symlink(file, kUsb1Path);
  std::vector<std::wstring> messages;
  SerialReader reader(
      usb1(), [&messages](const std::wstring& data) { messages.push_back(base642Raw(data)); });
  const bool opened = reader.open();
  std::filesystem::remove(kUsb1Path);
  ASSERT_TRUE(opened);
  std::size_t bytes = 0;
  const rig::BeforeEachByte stopAtTheEnd([&] {
    if (++bytes == scans.size()) reader.stop();
  });
  terminal::takeDroppedMessages();
  reader.run();
  EXPECT_EQ(terminal::takeDroppedMessages(), 1U);
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_TRUE(messages[0] == std::wstring(longest.begin(), longest.end()));
  EXPECT_EQ(messages[1], L"next");
}

std::size_t ownStackSize() {
  pthread_attr_t own;
  pthread_getattr_np(pthread_self(), &own);
  void* lowest = nullptr;
  std::size_t size = 0;
  pthread_attr_getstack(&own, &lowest, &size);
  pthread_attr_destroy(&own);
  return size;
}

TEST(TestWindowListener, HasASmallStack) {
  SerialLine line(LineSetting::kFramed);
  line.link(kUsb1Path);
  InputDeviceComPortFactory factory = usb1();
  for (const bool forTestWindow : {true, false}) {
    factory.forTestWindow = forTestWindow;
    std::size_t stack = 0;
    Messages messages;
    const auto device =
        factory.create([&stack, keep = messages.callback()](const std::wstring& data) {
          stack = ownStackSize();
          keep(data);
        });
    ASSERT_TRUE(device);
    line.send("scan\r");
    messages.take();
    // A sanitizer adds to the size that was asked for.
    EXPECT_EQ(stack < 8 * kSmallStack, forTestWindow) << stack;
  }
}

TEST(TestWindowListener, TakesNoPortFromTheHost) {
  Messages messages;
  std::optional<SerialLine> line(LineSetting::kFramed);
  line->link(kUsb1Path);
  InputDeviceComPortFactory factory = usb1();
  const auto device = factory.create(messages.callback());
  ASSERT_TRUE(device);
  line.reset();
  line.emplace(LineSetting::kFramed).link(kUsb1Path);
  ASSERT_TRUE(line->waitForReader(-1, rig::kPatience));
  factory.forTestWindow = true;
  std::unique_ptr<InputDevice> listener = factory.create([](const std::wstring&) {});
  ASSERT_TRUE(listener);
  listener.reset();
  line->send("scan\r");
  EXPECT_EQ(messages.take(), L"scan");
}

}  // namespace
}  // namespace quorvel
