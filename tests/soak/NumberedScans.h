// Scans that are told apart by their numbers.
#pragma once

#include <atomic>
#include <map>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#include "tests/rig/SerialDriver.h"
#include "tools/common/HostText.h"

namespace soak {

// Scans on their way; more would fill the host's queue, not the driver.
inline constexpr std::ptrdiff_t kUnderWay = 2000;

// Sends scans on every line of the driver, in turn, on a thread of its own.
class NumberedScans {
 public:
  explicit NumberedScans(rig::SerialDriver& driver)
      : driver_(driver), sent_(driver.lines.size()), thread_([this] { send(); }) {}
  ~NumberedScans() { stop(); }
  NumberedScans(const NumberedScans&) = delete;
  NumberedScans& operator=(const NumberedScans&) = delete;

  void stop() {
    stopped_ = true;
    room_.release();
    if (thread_.joinable()) thread_.join();
  }
  void noteArrival() { room_.release(); }
  // After stop: how many of each line.
  const std::vector<long>& sent() const { return sent_; }

 private:
  void send() {
    for (std::size_t turn = 0; !stopped_; turn = (turn + 1) % sent_.size()) {
      room_.acquire();
      driver_.lines[turn].send(std::to_string(sent_[turn]++) + '\r');
    }
  }

  rig::SerialDriver& driver_;
  std::vector<long> sent_;
  std::atomic<bool> stopped_ = false;
  std::counting_semaphore<> room_{kUnderWay};
  std::thread thread_;
};

// The next number of each device, and how many scans were another.
class Arrivals {
 public:
  void take(const terminal::Event& event) {
    ++count_;
    long& next = next_[event.source];
    const long number = std::stol(terminal::toUtf8(event.data));
    if (number != next || event.name != u"Штрихкод") ++wrong_;
    next = number + 1;
  }
  long count() const { return count_; }
  long wrong() const { return wrong_; }
  long next(const std::u16string& source) { return next_[source]; }

 private:
  std::map<std::u16string, long> next_;
  long count_ = 0;
  long wrong_ = 0;
};

}  // namespace soak
