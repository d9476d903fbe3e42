#include "tests/rig/RawDevice.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <boost/locale/encoding_utf.hpp>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

namespace rig {
namespace {

// So long that no other message is the same by chance.
std::string holdingMessage(const std::string& suffix) {
  return std::string(16, suffix.ends_with('h') ? 'H' : 'h');
}

}  // namespace

void GatedConnection::awaitHeld() {
  std::unique_lock lock(mutex_);
  if (!changed_.wait_for(lock, kPatience, [this] { return held_; })) {
    throw std::runtime_error("the message that holds the reader does not come");
  }
}

void GatedConnection::release() {
  const std::lock_guard lock(mutex_);
  held_ = false;
  changed_.notify_all();
}

bool GatedConnection::ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) {
  if (data != heldData_) return HostConnection::ExternalEvent(source, message, data);
  std::unique_lock lock(mutex_);
  held_ = true;
  changed_.notify_all();
  changed_.wait(lock, [this] { return !held_; });
  return true;
}

std::u16string base64(std::string_view bytes) {
  constexpr std::u16string_view kAlphabet =
      u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::u16string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::string_view group = bytes.substr(at, 3);
    unsigned bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= group.size() ? kAlphabet[bits >> (18 - 6 * i) & 63] : u'=';
    }
  }
  return text;
}

std::string suffixBytes(std::int32_t code) {
  if (code == -1) return {};
  const auto character = static_cast<char32_t>(code);
  return boost::locale::conv::utf_to_utf<char>(&character, &character + 1);
}

RawDevice::RawDevice(std::int32_t port, std::int32_t suffixCode)
    : suffix_(suffixBytes(suffixCode)),
      holding_(holdingMessage(suffix_)),
      line_(driver_.plugIn(port, terminal::LineSetting::kRaw)),
      port_(::open(line_.port().c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC)) {
  if (!port_) throw std::runtime_error("cannot look into the line");
  // Initialise the component again, now with the gate as its connection.
  driver_.component.object().Init(&gate_);
  driver_.component.setParameter(u"Suffix", suffixCode);
  driver_.component.setParameter(u"OutputDataType", 2);
  reader_ = threadAddedBy([&] { driver_.open(port); });
  holdReader();
}

RawDevice::~RawDevice() {
  gate_.release();
  driver_.closeAll();
}

std::vector<std::u16string> RawDevice::burst(std::string_view bytes) {
  const Reading expected = readingAfter(readingOf(reader_), bytes);
  line_.send(bytes);
  await("a burst in the line", [&] {
    int queued = 0;
    ioctl(port_.get(), FIONREAD, &queued);
    return queued == static_cast<int>(bytes.size());
  });
  gate_.release();
  awaitReading(expected);
  return holdReader();
}

std::vector<std::u16string> RawDevice::drip(std::string_view bytes,
                                            std::chrono::microseconds pause) {
  Reading expected = readingOf(reader_);
  gate_.release();
  for (const char& byte : bytes) {
    expected = readingAfter(expected, {&byte, 1});
    line_.send({&byte, 1});
    awaitReading(expected);
    std::this_thread::sleep_for(pause);
  }
  return holdReader();
}

// The reader makes one call for each byte, and one more that finds nothing unless the last byte
// ends a message.
Reading RawDevice::readingAfter(const Reading& before, std::string_view bytes) const {
  if (bytes.empty()) return before;
  const bool ended = !suffix_.empty() && bytes.back() == suffix_.back();
  const auto count = static_cast<long long>(bytes.size());
  return {before.calls + count + (ended ? 0 : 1), before.bytes + count};
}

void RawDevice::awaitReading(const Reading& expected) const {
  await("the reader of the line", [&] {
    const Reading reading = readingOf(reader_);
    return reading.bytes >= expected.bytes && reading.calls >= expected.calls;
  });
}

std::vector<std::u16string> RawDevice::holdReader() {
  // The last byte of a suffix ends the message, and may occur in the rest of it: anything else of
  // the same length stands for that.
  std::string end = suffix_;
  if (!end.empty()) std::fill(end.begin(), end.end() - 1, '-');
  line_.send(holding_ + end);
  gate_.awaitHeld();
  // The reader raises events in order, so all the others are in the queue by now.
  std::vector<std::u16string> messages;
  while (auto event = events_.take(std::chrono::milliseconds(0))) {
    messages.push_back(std::move(event->data));
  }
  return messages;
}

}  // namespace rig
