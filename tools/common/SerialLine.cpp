#include "tools/common/SerialLine.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <thread>

namespace terminal {
namespace {

// Disables a special character.
constexpr cc_t kNoCharacter = _POSIX_VDISABLE;

void check(bool done, const char* what) {
  if (!done) throw std::system_error(errno, std::generic_category(), what);
}

// For a line that nobody has open: poll keeps reporting the hangup at once, and never the arrival
// of the next reader.
void sleepUnlessCancelled(int cancel) {
  constexpr int kPause = 10;  // milliseconds
  pollfd cancelled = {cancel, POLLIN, 0};
  poll(&cancelled, 1, kPause);
}

void setFramed(termios& line) {
  line.c_iflag &= ~static_cast<tcflag_t>(ICRNL | INLCR | IGNCR | IXON | IXOFF | ISTRIP | BRKINT |
                                         INPCK | PARMRK);
  line.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ISIG | IEXTEN);
  line.c_lflag |= ICANON;
  std::fill(std::begin(line.c_cc), std::end(line.c_cc), kNoCharacter);
  line.c_cc[VEOL] = '\r';
}

}  // namespace

SerialLine::SerialLine(LineSetting setting)
    : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
  check(static_cast<bool>(master_), "cannot open a pseudo terminal");
  check(grantpt(master_.get()) == 0 && unlockpt(master_.get()) == 0,
        "cannot unlock the pseudo terminal");
  char path[64];
  check(ptsname_r(master_.get(), path, sizeof path) == 0, "cannot name the pseudo terminal");
  port_ = path;
  // Set through the master, which does not need the slave to be open; the setting stays.
  termios line;
  check(tcgetattr(master_.get(), &line) == 0, "cannot read the line setting");
  if (setting == LineSetting::kFramed) setFramed(line);
  if (setting == LineSetting::kRaw) cfmakeraw(&line);
  check(tcsetattr(master_.get(), TCSANOW, &line) == 0, "cannot change the line setting");
  // In packet mode the master learns when a reader discards the queues.
  int on = 1;
  check(ioctl(master_.get(), TIOCPKT, &on) == 0, "cannot watch the pseudo terminal");
}

SerialLine::~SerialLine() {
  if (!link_.empty()) unlink(link_.c_str());
}

void SerialLine::link(const std::string& path) {
  check(symlink(port_.c_str(), path.c_str()) == 0, path.c_str());
  link_ = path;
}

bool SerialLine::waitForReader(int cancel, std::chrono::milliseconds patience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (true) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    const int timeout =
        patience.count() < 0 ? -1 : static_cast<int>(std::max<long long>(0, left.count()));
    pollfd waits[] = {{master_.get(), POLLIN, 0}, {cancel, POLLIN, 0}};
    const int ready = poll(waits, 2, timeout);
    if (ready < 0 && errno == EINTR) continue;
    check(ready >= 0, "cannot wait for a reader");
    if (ready == 0 || waits[1].revents) return false;
    if (!(waits[0].revents & POLLIN)) {
      // A program opened and closed the port without reading, as stty(1) does.
      sleepUnlessCancelled(cancel);
      continue;
    }
    char packet[1024];
    check(read(master_.get(), packet, sizeof packet) > 0, "cannot watch the reader");
    // The reader's input queue is discarded first, its output queue last.
    if (packet[0] & TIOCPKT_FLUSHWRITE) return true;
  }
}

bool SerialLine::send(std::string_view bytes, int cancel) {
  while (!bytes.empty()) {
    pollfd waits[] = {{master_.get(), POLLOUT, 0}, {cancel, POLLIN, 0}};
    if (poll(waits, 2, -1) < 0) continue;
    if (waits[1].revents) return false;
    if (!(waits[0].revents & POLLOUT)) {
      sleepUnlessCancelled(cancel);
      continue;
    }
    const ssize_t written = ::write(master_.get(), bytes.data(), bytes.size());
    if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    check(written >= 0, "cannot send");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool SerialLine::sendSlowly(std::string_view bytes, std::chrono::microseconds pause, int cancel) {
  for (const char& byte : bytes) {
    if (!send({&byte, 1}, cancel)) return false;
    std::this_thread::sleep_for(pause);
  }
  return true;
}

}  // namespace terminal
