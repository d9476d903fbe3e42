#include "devices/InputDeviceComPort.h"

#include <fcntl.h>
#include <sys/select.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <thread>
#include <vector>

#include "devices/LineSpeeds.h"
#include "devices/SerialFamilies.h"
#include "util/Base64.h"
#include "util/CodePages.h"
#include "util/Text.h"

namespace quorvel {
namespace {

constexpr std::chrono::milliseconds kStep{1000};

speed_t speedConstant(std::uint32_t bitsPerSecond) {
  const auto speed = std::find_if(
      kLineSpeeds.begin(), kLineSpeeds.end(),
      [bitsPerSecond](const LineSpeed& known) { return known.bitsPerSecond == bitsPerSecond; });
  return speed == kLineSpeeds.end() ? B9600 : speed->constant;
}

// A read set for select that holds one descriptor of any number: an fd_set ends at 1023, and
// FD_SET aborts the process beyond it.
class ReadSet {
 public:
  explicit ReadSet(int descriptor)
      : words_(static_cast<std::size_t>(descriptor) / kBitsPerWord + 1) {
    const auto bit = static_cast<std::size_t>(descriptor) % kBitsPerWord;
    words_.back() = static_cast<fd_mask>(1UL << bit);
    // select may look at a whole fd_set.
    words_.resize(std::max(words_.size(), sizeof(fd_set) / sizeof(fd_mask)));
  }
  fd_set* get() { return reinterpret_cast<fd_set*>(words_.data()); }

 private:
  static constexpr std::size_t kBitsPerWord = std::numeric_limits<unsigned long>::digits;
  static_assert(sizeof(fd_mask) == sizeof(unsigned long));

  std::vector<fd_mask> words_;
};

}  // namespace

std::unique_ptr<InputDevice> InputDeviceComPortFactory::create(const DataCallback& callback) {
  auto device = std::make_unique<InputDeviceComPort>(callback);
  if (!device->start(*this)) return nullptr;
  return device;
}

bool waitForReadyRead(int descriptor, unsigned long milliseconds) {
  // select overlooks numbers beyond the process's descriptor table, and would wait for nothing.
  if (descriptor <= 0 || ::fcntl(descriptor, F_GETFD) < 0) return false;
  const bool unlimited = milliseconds == std::numeric_limits<std::uint32_t>::max();
  timeval left{static_cast<time_t>(milliseconds / 1000),
               static_cast<suseconds_t>(milliseconds % 1000 * 1000)};
  int ready;
  do {
    ReadSet readSet(descriptor);
    // Linux leaves in `left` what an interrupted wait had not used up.
    ready = select(descriptor + 1, readSet.get(), nullptr, nullptr, unlimited ? nullptr : &left);
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

InputDeviceComPort::~InputDeviceComPort() {
  running_ = false;
  thread_.join();
}

bool InputDeviceComPort::start(const InputDeviceComPortFactory& factory) {
  factory_ = factory;
  timeoutCOM_ = factory.timeoutCOM;
  encoding_ = factory.comEncoding;
  suffix_ = wstr2str(factory.suffix);
  path_ = devicePathOf(factory.port);
  if (!openPort()) return false;
  setSpeed();
  running_ = true;
  if (thread_.start(ThreadFunction, this, factory.forTestWindow ? kSmallStack : 0)) return true;
  running_ = false;
  descriptor_.reset();
  return false;
}

bool InputDeviceComPort::openPort() {
  descriptor_ = FileDescriptor(::open(path_.c_str(), O_RDONLY | O_NONBLOCK));
  if (descriptor_.get() == 0) {
    // A host without standard input gives away number 0, which waitForReadyRead never waits for.
    descriptor_ = FileDescriptor(::fcntl(0, F_DUPFD, 1));
  }
  if (!descriptor_) return false;
  // The host's child processes have no business with the scanner.
  ::fcntl(descriptor_.get(), F_SETFD, FD_CLOEXEC);
  return true;
}

void InputDeviceComPort::setSpeed() const {
  termios line;
  // Fails on what is no serial line, and then there is nothing to set. Nor does a refused speed
  // matter: many USB scanners have none.
  if (tcgetattr(descriptor_.get(), &line) == 0) {
    cfsetispeed(&line, speedConstant(factory_.speed));
    cfsetospeed(&line, speedConstant(factory_.speed));
    tcsetattr(descriptor_.get(), TCSAFLUSH, &line);
  }
  tcflush(descriptor_.get(), TCIOFLUSH);
}

void* InputDeviceComPort::ThreadFunction(void* device) {
  static_cast<InputDeviceComPort*>(device)->read();
  return nullptr;
}

void InputDeviceComPort::read() noexcept {
  while (running_) {
    const auto stepEnd = std::chrono::steady_clock::now() + kStep;
    try {
      if (waitForReadyRead(descriptor_.get(), kStep.count()) && readPass()) continue;
    } catch (...) {
      // One message is lost to what its receiver throws, or to a lack of memory, not the next ones.
      continue;
    }
    // An unplugged adapter or a port with no chip behind it is readable, and fails, at once and
    // forever: what is left of the step is rest. After a wait in vain nothing is left of it.
    std::this_thread::sleep_until(stepEnd);
  }
}

bool InputDeviceComPort::readPass() {
  std::string message;
  char byte;
  while (running_) {
    const ssize_t got = ::read(descriptor_.get(), &byte, sizeof byte);
    if (got < 1) {
      const bool drained = got < 0 && (errno == EAGAIN || errno == EINTR);
      if (message.empty()) return drained;
      if (suffix_.empty()) deliver(message);
      return true;
    }
    if (!suffix_.empty() && byte == suffix_.back()) {
      if (!message.empty()) deliverFramed(std::move(message));
      return true;
    }
    message += byte;
  }
  return true;
}

void InputDeviceComPort::deliverFramed(std::string message) const {
  // The other bytes of the suffix are cut off unlooked: a scanner always sends the whole of it.
  const std::size_t cut = suffix_.size() - 1;
  if (message.size() < cut) return;
  message.resize(message.size() - cut);
  deliver(message);
}

void InputDeviceComPort::deliver(const std::string& message) const {
  callback_(ConvertMbsToWcs(raw2Base64(message), encoding_));
}

}  // namespace quorvel
