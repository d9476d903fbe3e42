// The script that frames lines must bring any line into the state that the tests call framed.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <ostream>
#include <string>

#include "tests/rig/Driver.h"
#include "tests/rig/Program.h"
#include "tools/common/SerialLine.h"
#include "util/Handles.h"

namespace {

using terminal::LineSetting;
using terminal::SerialLine;

termios settingOf(const SerialLine& line) {
  termios setting = {};
  const int port = open(line.port().c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
  EXPECT_EQ(tcgetattr(port, &setting), 0);
  close(port);
  return setting;
}

class FrameLine : public testing::TestWithParam<LineSetting> {};

TEST_P(FrameLine, MakesAnyLineFramed) {
  const SerialLine framed(LineSetting::kFramed);
  const SerialLine line(GetParam());
  ASSERT_EQ(rig::run({rig::frameLinePath(), line.port()}).code, 0);
  const termios expected = settingOf(framed);
  const termios actual = settingOf(line);
  // Compares only the input settings: a line that had been raw keeps its raw output.
  constexpr tcflag_t kInput =
      ICRNL | INLCR | IGNCR | IXON | IXOFF | ISTRIP | BRKINT | INPCK | PARMRK;
  constexpr tcflag_t kLocal = ICANON | ECHO | ECHONL | ISIG | IEXTEN;
  EXPECT_EQ(actual.c_iflag & kInput, expected.c_iflag & kInput);
  EXPECT_EQ(actual.c_lflag & kLocal, expected.c_lflag & kLocal);
  for (const int character : {VINTR, VQUIT, VERASE, VKILL, VEOF, VEOL, VEOL2, VSTART, VSTOP, VSUSP,
                              VREPRINT, VWERASE, VLNEXT}) {
    EXPECT_EQ(actual.c_cc[character], expected.c_cc[character]) << "character " << character;
  }
}

INSTANTIATE_TEST_SUITE_P(Lines, FrameLine,
                         testing::Values(LineSetting::kFramed, LineSetting::kRaw,
                                         LineSetting::kCooked));

// The name of an end byte, as the script takes it, and a scan that ends with it.
struct EndByte {
  const char* name;
  std::string scan;
};

// Without it GoogleTest prints the bytes of the object, including uninitialized padding.
void PrintTo(const EndByte& end, std::ostream* output) { *output << end.name; }

class FrameLineEnd : public testing::TestWithParam<EndByte> {};

// A read from a framed line returns one scan, however large the buffer and however much has come.
std::string nextScan(int port) {
  char bytes[64];
  const ssize_t count = read(port, bytes, sizeof bytes);
  return count < 0 ? "nothing" : std::string(bytes, static_cast<std::size_t>(count));
}

TEST_P(FrameLineEnd, HandsOverAScanWhenItsEndHasCome) {
  const EndByte& end = GetParam();
  SerialLine line(LineSetting::kCooked);
  const quorvel::FileDescriptor port(
      open(line.port().c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(rig::run({rig::frameLinePath(), "--end", end.name, line.port()}).code, 0);
  ASSERT_TRUE(line.send(end.scan + end.scan + "AB"));
  EXPECT_EQ(nextScan(port.get()), end.scan);
  EXPECT_EQ(nextScan(port.get()), end.scan);
  EXPECT_EQ(nextScan(port.get()), "nothing");
}

INSTANTIATE_TEST_SUITE_P(Ends, FrameLineEnd,
                         testing::Values(EndByte{"cr", "1\t2\x03\r"}, EndByte{"lf", "1\r2\t\n"},
                                         EndByte{"tab", "1\r2\x03\t"}, EndByte{"etx", "1\r2\t\x03"},
                                         EndByte{"7", "1\r2\t\x07"}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(FrameLineEnd, RefusesAnythingButAByte) {
  const SerialLine line(LineSetting::kCooked);
  const termios before = settingOf(line);
  for (const char* const end : {"0", "128", "crlf", ""}) {
    EXPECT_NE(rig::run({rig::frameLinePath(), "--end", end, line.port()}).code, 0) << end;
  }
  EXPECT_EQ(settingOf(line).c_lflag, before.c_lflag);
}

}  // namespace
