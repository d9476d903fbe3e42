// What open devices cost while nobody scans.
#include <X11/Xlib.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/select.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench/Report.h"
#include "tests/rig/Environment.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"
#include "util/Handles.h"

namespace {

constexpr std::int32_t kUsb1 = 129;
// Several, because what one costs in the time is next to nothing.
constexpr std::int32_t kPorts = 16;
const std::chrono::seconds kWatched{bench::repetitions(20)};
const auto kSeconds = static_cast<double>(kWatched.count());

// A thread that waits as the driver's does, for what never comes: for a second at a time at a
// serial port, without limit at a keyboard, and in both cases for its end as well.
class BareWait {
 public:
  enum class Kind { kPort, kKeyboard };

  BareWait(Kind kind, int descriptor) : kind_(kind), descriptor_(descriptor) {
    id_ = rig::threadAddedBy([this] { thread_ = std::thread([this] { run(); }); });
  }
  ~BareWait() {
    running_ = false;
    eventfd_write(end_.get(), 1);
    thread_.join();
  }
  BareWait(const BareWait&) = delete;
  BareWait& operator=(const BareWait&) = delete;

  pid_t id() const { return id_; }

 private:
  void run() const {
    while (running_) {
      if (kind_ == Kind::kPort) {
        waitAtPort();
      } else {
        pollfd waits[] = {{descriptor_, POLLIN, 0}, {end_.get(), POLLIN, 0}};
        poll(waits, std::size(waits), -1);
      }
    }
  }
  void waitAtPort() const {
    fd_set set;
    FD_ZERO(&set);
    FD_SET(descriptor_, &set);
    FD_SET(end_.get(), &set);
    timeval second = {1, 0};
    select(std::max(descriptor_, end_.get()) + 1, &set, nullptr, nullptr, &second);
  }

  const Kind kind_;
  const int descriptor_;
  const quorvel::FileDescriptor end_{eventfd(0, EFD_CLOEXEC)};
  std::atomic<bool> running_ = true;
  std::thread thread_;
  pid_t id_ = 0;
};

struct Cost {
  double microseconds = 0;
  double wakeUps = 0;
};

Cost costOf(const std::vector<pid_t>& threads) {
  Cost cost;
  for (const pid_t thread : threads) {
    using Microseconds = std::chrono::duration<double, std::micro>;
    cost.microseconds += Microseconds(rig::processorTime(thread)).count();
    cost.wakeUps += static_cast<double>(rig::sleepCount(thread));
  }
  return cost;
}

// Both are idle at the same time.
void idle(benchmark::State& state) {
  const rig::XServer server({"Scanner"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  rig::SerialDriver driver;
  const rig::XClient client(server.display());
  std::vector<pid_t> driven, bare;
  std::vector<std::unique_ptr<BareWait>> waits;
  const auto addBare = [&](BareWait::Kind kind, int descriptor) {
    waits.push_back(std::make_unique<BareWait>(kind, descriptor));
    bare.push_back(waits.back()->id());
  };
  terminal::SerialLine silent(terminal::LineSetting::kFramed);
  const quorvel::FileDescriptor port(open(silent.port().c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC));
  for (std::int32_t number = kUsb1; number < kUsb1 + kPorts; ++number) {
    driver.plugIn(number);
    // Of two that wake up together the first one warms the caches for the other: they take turns.
    if (number % 2 == 0) addBare(BareWait::Kind::kPort, port.get());
    driven.push_back(rig::threadAddedBy([&] { driver.open(number); }));
    if (number % 2 != 0) addBare(BareWait::Kind::kPort, port.get());
  }
  driven.push_back(rig::threadAddedBy([&] { driver.openKeyboard(u"Scanner"); }));
  addBare(BareWait::Kind::kKeyboard, ConnectionNumber(client.get()));

  for (auto iteration : state) {
    const Cost drivenBefore = costOf(driven), bareBefore = costOf(bare);
    std::this_thread::sleep_for(kWatched);
    const Cost drivenAfter = costOf(driven), bareAfter = costOf(bare);
    const auto report = [&](const std::string& what, const std::string& unit, double own,
                            double ofReference) {
      bench::report({.what = "idle, 16 ports and a keyboard, " + what,
                     .reference = "threads making the same waits",
                     .unit = unit,
                     .own = own / kSeconds,
                     .ofReference = ofReference / kSeconds,
                     .atMost = 1.1});
    };
    report("CPU time", "µs/s", drivenAfter.microseconds - drivenBefore.microseconds,
           bareAfter.microseconds - bareBefore.microseconds);
    report("wake-ups", "/s", drivenAfter.wakeUps - drivenBefore.wakeUps,
           bareAfter.wakeUps - bareBefore.wakeUps);
    state.SetIterationTime(kSeconds);
  }
}
BENCHMARK(idle)->UseManualTime()->Iterations(1);

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
