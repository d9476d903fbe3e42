#include "devices/SerialPort.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>
#include <vector>

#include "devices/LineSpeeds.h"
#include "util/PosixThread.h"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

constexpr auto kStep = 1000ms;
// Between two tries to open a port that is not there. The system's news of the device file make it
// quicker.
constexpr auto kRetryPause = 800ms;
// Between two openings of a port that can be opened but not read. A port that has never brought
// anything is tried less and less often.
constexpr auto kShortestPause = 1000ms;
constexpr auto kLongestPause = 5000ms;
constexpr auto kNever = 24h;

// The ports that hosts have opened in this process. Never destroyed: readers may still be running
// while the process exits.
struct HostPorts {
  std::mutex mutex;
  std::vector<SerialPort*> ports;
};
HostPorts& hostPorts() {
  static auto& ports = *new HostPorts;
  return ports;
}

speed_t speedConstant(std::uint32_t bitsPerSecond) {
  const auto speed = std::find_if(
      kLineSpeeds.begin(), kLineSpeeds.end(),
      [bitsPerSecond](const LineSpeed& known) { return known.bitsPerSecond == bitsPerSecond; });
  return speed == kLineSpeeds.end() ? B9600 : speed->constant;
}

FileDescriptor openForReading(const std::string& path) {
  // Without O_NOCTTY the port could become the controlling terminal of a host that leads a session,
  // and unplugging the scanner would end the host with a SIGHUP.
  return notStandardInput(
      FileDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)));
}

// Whether the descriptor is a terminal that has not hung up: of a hung-up one no settings can be
// read any more.
bool isLiveTerminal(int descriptor) {
  pollfd hangUp = {.fd = descriptor, .events = 0, .revents = 0};
  return isatty(descriptor) && poll(&hangUp, 1, 0) >= 0 && !(hangUp.revents & (POLLHUP | POLLERR));
}

bool isCharacterDevice(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISCHR(status.st_mode);
}

bool areSameFile(int one, int other) {
  struct stat a, b;
  return fstat(one, &a) == 0 && fstat(other, &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

}  // namespace

SerialPort::SerialPort(std::string path, std::uint32_t bitsPerSecond, Owner owner)
    : path_(std::move(path)),
      bitsPerSecond_(bitsPerSecond),
      owner_(owner),
      wake_(notStandardInput(FileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)))),
      pause_(kShortestPause) {}

SerialPort::~SerialPort() {
  // A port that has not got so far must not ask for the list: making it may take memory, of which
  // there is none when this runs.
  if (!known_) return;
  const std::lock_guard lock(hostPorts().mutex);
  std::erase(hostPorts().ports, this);
}

bool SerialPort::open() {
  if (!wake_ || !openFile()) return false;
  if (owner_ == Owner::kHost) takeOver();
  // Last, because it discards what came while the port was not yet this one's alone.
  setSpeed();
  return true;
}

bool SerialPort::openFile() {
  FileDescriptor file = openForReading(path_);
  if (!file) return false;
  // A path may come back as a file or a folder. At the first opening whatever can be opened will
  // do.
  if (wasLost_ && !isCharacterDevice(file.get())) return false;
  wait_.emplace(file.get(), wake_.get());
  node_ = nodeAtPath();
  openedAt_ = Clock::now();
  descriptor_ = std::move(file);
  return true;
}

std::optional<SerialPort::Node> SerialPort::nodeAtPath() const {
  struct stat status;
  if (lstat(path_.c_str(), &status) != 0) return std::nullopt;
  return Node{.device = status.st_dev, .number = status.st_ino};
}

void SerialPort::setSpeed() const {
  termios line;
  // Fails on anything but a serial line, and then there is nothing to set. Nor does a refused speed
  // matter: many USB scanners have none.
  if (tcgetattr(descriptor_.get(), &line) == 0) {
    cfsetispeed(&line, speedConstant(bitsPerSecond_));
    cfsetospeed(&line, speedConstant(bitsPerSecond_));
    tcsetattr(descriptor_.get(), TCSAFLUSH, &line);
  }
  tcflush(descriptor_.get(), TCIOFLUSH);
}

void SerialPort::takeOver() {
  const std::lock_guard lock(hostPorts().mutex);
  hostPorts().ports.push_back(this);
  known_ = true;
  for (SerialPort* const other : hostPorts().ports) {
    if (other != this && other->path_ == path_) other->leaveIfLost(descriptor_.get());
  }
}

void SerialPort::leaveIfLost(int successor) {
  const std::lock_guard lock(mutex_);
  const bool isLost =
      wasLost_ || !isLiveTerminal(descriptor_.get()) || !areSameFile(descriptor_.get(), successor);
  if (!isLost) return;
  left_ = true;
  // The reading thread may be about to read: from now on the descriptor gives it an error and not
  // the successor's bytes.
  if (descriptor_) dup3(wake_.get(), descriptor_.get(), O_CLOEXEC);
  wake();
}

bool SerialPort::waitForData() {
  if (!descriptor_) {
    waitForReturn();
    return false;
  }
  const ReadyWait::Result result = wait_->wait(kStep);
  if (result == ReadyWait::Result::kWoken) clearWake();
  return result == ReadyWait::Result::kReady;
}

SerialPort::Read SerialPort::read(char& byte) {
  while (true) {
    const ssize_t got = ::read(descriptor_.get(), &byte, sizeof byte);
    if (got == 1) {
      everRead_ = true;
      return Read::kByte;
    }
    if (got < 0 && errno == EINTR) continue;
    // A live line ends a read with nothing, too: at an end-of-file character, for one.
    if (got < 0 ? errno == EAGAIN : isLiveTerminal(descriptor_.get())) return Read::kNothingYet;
    lose();
    return Read::kGone;
  }
}

void SerialPort::lose() {
  {
    const std::lock_guard lock(mutex_);
    descriptor_.reset();
    wasLost_ = true;
  }
  wait_.reset();
  refused_ = false;
  const auto now = Clock::now();
  if (now - openedAt_ > kLongestPause) pause_ = kShortestPause;
  nextTry_ = openedAt_ + pause_;
  if (!everRead_) pause_ = std::min<Clock::duration>(2 * pause_, kLongestPause);
  dropExceptions([this] { watch_.emplace(path_.substr(path_.rfind('/') + 1), wake_.get()); });
  // The watch tells only what happens from now on.
  if (nodeAtPath() != node_) nextTry_ = now;
}

void SerialPort::waitForReturn() {
  if (Clock::now() >= nextTry_ && comeBack()) return;
  pollfd events[] = {{.fd = wake_.get(), .events = POLLIN, .revents = 0},
                     {.fd = watch_ ? watch_->descriptor() : -1, .events = POLLIN, .revents = 0}};
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(nextTry_ - Clock::now());
  poll(events, std::size(events), static_cast<int>(std::max<long long>(left.count(), 0)));
  if (events[0].revents != 0) clearWake();
  if (!watch_) return;
  const DeviceFileWatch::Changes changes = watch_->takeChanges();
  if (changes.appeared || (changes.permitted && refused_)) nextTry_ = Clock::now();
}

bool SerialPort::comeBack() {
  const std::lock_guard lock(mutex_);
  if (left_) {
    watch_.reset();
    nextTry_ = Clock::now() + kNever;
    return false;
  }
  // Out of memory is one more reason for another try.
  bool opened = false;
  dropExceptions([&] { opened = openFile(); });
  refused_ = !opened;
  if (!opened) {
    nextTry_ = Clock::now() + kRetryPause;
    pause_ = kShortestPause;
    return false;
  }
  setSpeed();
  watch_.reset();
  return true;
}

void SerialPort::wake() { eventfd_write(wake_.get(), 1); }

void SerialPort::clearWake() const {
  eventfd_t count;
  eventfd_read(wake_.get(), &count);
}

}  // namespace quorvel
