// The model of the line discipline, compared with the kernel's.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/rig/Patience.h"
#include "tools/common/SerialLine.h"
#include "tools/host/LineModel.h"
#include "util/Handles.h"

namespace {

using terminal::LineSetting;
using terminal::SerialLine;
using terminal::throughLine;

// A line that the test itself reads.
struct KernelLine : SerialLine {
  explicit KernelLine(LineSetting kind) : SerialLine(kind) {
    tcgetattr(reader.get(), &setting);
    // An echo would come back to the sender, which does not read it.
    setting.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    set();
  }

  void set() { tcsetattr(reader.get(), TCSANOW, &setting); }

  // The bytes and a last line, which tells the reader that all have arrived: a pseudo terminal
  // hands them on asynchronously.
  std::string ended(const std::string& bytes) const {
    const bool isCanonical = (setting.c_lflag & ICANON) != 0;
    const cc_t end =
        setting.c_cc[VEOF] != _POSIX_VDISABLE ? setting.c_cc[VEOF] : setting.c_cc[VEOL];
    return bytes + "\r\n" + kLast + (isCanonical ? std::string(1, static_cast<char>(end)) : "");
  }

  // What the kernel makes of the bytes, one entry for each line.
  std::vector<std::string> handsOver(const std::string& bytes) {
    send(bytes);
    // An interrupt character discards what has not been read, so nothing may be read before it. A
    // scan too long for the queue is different: its end comes in only as its start is read.
    if (bytes.size() < 1000) rig::await("the last line", [this] { return hasLast(); });
    std::vector<std::string> lines;
    do {
      pollfd wait = {reader.get(), POLLIN, 0};
      constexpr auto patience = std::chrono::milliseconds(rig::kPatience).count();
      if (poll(&wait, 1, static_cast<int>(patience)) <= 0) break;
      std::array<char, 8192> line;
      const ssize_t got = ::read(reader.get(), line.data(), line.size());
      if (got > 0) lines.emplace_back(line.data(), static_cast<std::size_t>(got));
    } while (lines.empty() || lines.back().find(kLast) == std::string::npos);
    if (setting.c_lflag & ICANON) return lines;
    return {std::accumulate(lines.begin(), lines.end(), std::string())};
  }

  // The last line is longer than any scan of random bytes, so its length tells that it is there.
  bool hasLast() const {
    int waiting = 0;
    return ioctl(reader.get(), FIONREAD, &waiting) == 0 &&
           waiting >= static_cast<int>(sizeof(kLast) - 1);
  }

  // Occurs in no scan of these tests.
  static constexpr char kLast[] = "################################################";

  quorvel::FileDescriptor reader{::open(port().c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK)};
  termios setting;
};

// Random bytes, among them many that a line acts on.
std::string randomBytes(std::mt19937& random) {
  static const std::string kSpecial =
      "\r\n\r\n\x03\x04\x08\x11\x13\x15\x16\x17\x1A\x1C\x7F\xFF abc_";
  std::string bytes;
  for (auto left = random() % 40 + 1; left > 0; --left) {
    bytes += random() % 2 ? kSpecial[random() % kSpecial.size()]
                          : static_cast<char>('A' + random() % 26);
  }
  // At the end, a character that makes the next one literal would affect the next scan.
  if (bytes.back() == '\x16') bytes += 'x';
  return bytes;
}

class LineModel : public testing::TestWithParam<LineSetting> {};

TEST_P(LineModel, HandsOverTheSameBytesAsTheKernel) {
  KernelLine line(GetParam());
  std::mt19937 random(20261121);
  for (int scan = 0; scan < 2000; ++scan) {
    const std::string bytes = line.ended(randomBytes(random));
    ASSERT_EQ(throughLine(line.setting, bytes).available, line.handsOver(bytes))
        << testing::PrintToString(bytes);
  }
}

std::vector<std::size_t> lengthsOf(const std::vector<std::string>& lines) {
  std::vector<std::size_t> lengths;
  for (const std::string& line : lines) lengths.push_back(line.size());
  return lengths;
}

TEST_P(LineModel, CutsAScanWhereTheKernelDoes) {
  KernelLine line(GetParam());
  for (const std::size_t length : {4094U, 4095U, 4096U, 5000U}) {
    if (GetParam() == LineSetting::kRaw) continue;  // a raw line keeps no more than its queue holds
    const std::string bytes = line.ended(std::string(length, 'x') + "y");
    EXPECT_EQ(lengthsOf(throughLine(line.setting, bytes).available),
              lengthsOf(line.handsOver(bytes)))
        << length;
  }
}

INSTANTIATE_TEST_SUITE_P(Settings, LineModel,
                         testing::Values(LineSetting::kFramed, LineSetting::kRaw,
                                         LineSetting::kCooked));

TEST(LineModel, AgreesWithTheKernelOnUnusualSettings) {
  KernelLine line(LineSetting::kCooked);
  std::mt19937 random(7);
  for (const tcflag_t input :
       {tcflag_t{IGNCR}, tcflag_t{INLCR}, tcflag_t{ISTRIP}, tcflag_t{IUCLC}}) {
    line.setting.c_iflag = input;
    for (const tcflag_t canonical : {tcflag_t{ICANON}, tcflag_t{0}}) {
      line.setting.c_lflag = canonical | ISIG | IEXTEN;
      line.set();
      for (int scan = 0; scan < 300; ++scan) {
        const std::string bytes = line.ended(randomBytes(random));
        ASSERT_EQ(throughLine(line.setting, bytes).available, line.handsOver(bytes))
            << testing::PrintToString(bytes) << ' ' << input << ' ' << canonical;
      }
    }
  }
}

TEST(LineModel, AnUnfinishedLineStaysHidden) {
  const KernelLine line(LineSetting::kFramed);
  const terminal::LineOutput output = throughLine(line.setting, "123\r45");
  EXPECT_EQ(output.available, std::vector<std::string>{"123\r"});
  EXPECT_EQ(output.hidden, "45");
}

}  // namespace
