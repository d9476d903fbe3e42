// The script that frames a line must make of any line what the tests call framed.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>

#include "tools/common/SerialLine.h"

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
  ASSERT_EQ(std::system((QUORVEL_FRAME_LINE " " + line.port()).c_str()), 0);
  const termios expected = settingOf(framed);
  const termios actual = settingOf(line);
  // What decides about input; a line that had been raw keeps its raw output.
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

}  // namespace
