#include "tools/host/LineWatch.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

#include "tools/host/SerialExamination.h"
#include "tools/host/TimeLeft.h"

namespace terminal {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// How long a line is silent after the last byte of a scan, however slow it is.
constexpr milliseconds kLineSilence{400};
// Far more than a scan: something else is sending.
constexpr std::size_t kEnough = 65536;

void check(bool done, const std::string& what) {
  if (!done) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

std::string LineSample::bytes() const {
  std::string all;
  for (const std::string& burst : bursts) all += burst;
  return all;
}

LineWatch::LineWatch(const std::string& file, int bitsPerSecond)
    : port_(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
  check(static_cast<bool>(port_), file);
  check(tcgetattr(port_.get(), &found_) == 0, file);
  termios raw = found_;
  cfmakeraw(&raw);
  const speed_t speed = speedCode(bitsPerSecond).value_or(B9600);
  cfsetispeed(&raw, speed);
  cfsetospeed(&raw, speed);
  tcsetattr(port_.get(), TCSAFLUSH, &raw);
  tcflush(port_.get(), TCIOFLUSH);
}

LineWatch::~LineWatch() { tcsetattr(port_.get(), TCSANOW, &found_); }

LineSample LineWatch::take(milliseconds patience, const EndSignals& end,
                           const std::function<void(std::chrono::seconds left)>& waiting) {
  LineSample sample;
  const Clock::time_point givingUp = Clock::now() + patience;
  std::optional<Clock::time_point> lastBurst;
  std::size_t taken = 0;
  while (!sample.isUnplugged && taken < kEnough) {
    if (!lastBurst) waiting(std::chrono::ceil<std::chrono::seconds>(timeUntil(givingUp)));
    const milliseconds left = timeUntil(lastBurst ? *lastBurst + kLineSilence : givingUp);
    if (left.count() == 0) break;
    pollfd waits[] = {{port_.get(), POLLIN, 0}, {end.descriptor(), POLLIN, 0}};
    const int ready = poll(waits, 2, waitStep(left));
    if (ready > 0 && waits[1].revents) {
      sample.isInterrupted = true;
      break;
    }
    if (ready <= 0 || !takeBurst(sample)) continue;
    lastBurst = Clock::now();
    taken += sample.bursts.back().size();
  }
  return sample;
}

bool LineWatch::takeBurst(LineSample& sample) const {
  std::string burst;
  std::array<char, 4096> bytes;
  while (burst.size() < kEnough) {
    const ssize_t got = read(port_.get(), bytes.data(), bytes.size());
    if (got < 0 && errno == EINTR) continue;
    sample.isUnplugged = got == 0 || (got < 0 && errno != EAGAIN);
    if (got <= 0) break;
    burst.append(bytes.data(), static_cast<std::size_t>(got));
  }
  if (burst.empty()) return false;
  sample.bursts.push_back(std::move(burst));
  return true;
}

}  // namespace terminal
