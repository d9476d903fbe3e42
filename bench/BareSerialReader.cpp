#include "bench/BareSerialReader.h"

#include <fcntl.h>
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace bench {

BareSerialReader::BareSerialReader(const std::string& port, Callback callback)
    : callback_(std::move(callback)),
      descriptor_(open(port.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
  if (descriptor_ < 0) throw std::runtime_error(port + " cannot be opened");
  tcflush(descriptor_, TCIOFLUSH);
  thread_ = std::thread([this] { run(); });
}

BareSerialReader::~BareSerialReader() {
  running_ = false;
  thread_.join();
  close(descriptor_);
}

void BareSerialReader::run() {
  std::string scan;
  while (running_) {
    fd_set ports;
    FD_ZERO(&ports);
    FD_SET(descriptor_, &ports);
    timeval second = {1, 0};
    if (select(descriptor_ + 1, &ports, nullptr, nullptr, &second) <= 0) continue;
    char byte;
    while (read(descriptor_, &byte, 1) == 1) {
      if (byte == '\r') {
        callback_(scan);
        scan.clear();
        break;
      }
      scan += byte;
    }
  }
}

}  // namespace bench
