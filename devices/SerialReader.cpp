#include "devices/SerialReader.h"

#include "devices/SerialFamilies.h"
#include "util/Base64.h"
#include "util/CodePages.h"
#include "util/PosixThread.h"
#include "util/ScopedWipe.h"
#include "util/Text.h"

namespace quorvel {
namespace {

constexpr std::chrono::milliseconds kLongestLeave{1000};

}  // namespace

SerialReader::SerialReader(const InputDeviceComPortFactory& factory, const DataCallback& callback)
    : factory_(factory),
      callback_(callback),
      callbackMask_(SignalMask::current()),
      suffix_(wstr2str(factory.suffix)),
      port_(devicePathOf(factory.port), factory.speed,
            factory.forTestWindow ? SerialPort::Owner::kTestWindow : SerialPort::Owner::kHost) {}

void SerialReader::stop() {
  running_ = false;
  port_.wake();
}

void SerialReader::run() {
  while (running_) {
    if (port_.waitForData()) dropExceptions([this] { readPass(); });
  }
}

void SerialReader::readPass() {
  message_.clear();
  while (!hasToLeave()) {
    char byte;
    switch (port_.read(byte)) {
      case SerialPort::Read::kGone:
        return;
      case SerialPort::Read::kNothingYet:
        if (suffix_.empty() && !message_.empty()) deliver(0);
        return;
      case SerialPort::Read::kByte:
        break;
    }
    if (endsMessage(byte)) {
      // The other bytes of the suffix are cut off without comparing: a scanner always sends them.
      if (!message_.empty()) deliver(suffix_.size() - 1);
      return;
    }
    message_.append(byte);
  }
}

bool SerialReader::isTimeToLeave() {
  const auto now = std::chrono::steady_clock::now();
  if (!leaveBy_) leaveBy_ = now + kLongestLeave;
  return now > *leaveBy_;
}

void SerialReader::deliver(std::size_t cut) {
  if (!message_.cutTail(cut)) return;
  std::string base64 = raw2Base64(message_.bytes());
  const ScopedWipe wipeBase64(base64);
  message_.clear();
  std::wstring data = ConvertMbsToWcs(base64, factory_.comEncoding);
  const ScopedWipe wipeData(data);
  const ScopedSignalMask hosts(callbackMask_);
  callback_(data);
}

}  // namespace quorvel
