// How long a scan is on its way from the end key to the host's event.
#include <X11/extensions/XInput2.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bench/Measure.h"
#include "bench/Report.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"
#include "tools/common/HostText.h"

namespace {

using Clock = std::chrono::system_clock;
using Microseconds = std::chrono::duration<double, std::micro>;
using terminal::Key;

enum Keyboard : std::size_t { kDriven, kBare };
const std::vector<std::string> kNames = {"Driven", "Bare"};

// When the next press of Return arrives at a client that does nothing but wait for events.
Clock::time_point nextReturnOf(Display* display) {
  while (true) {
    XEvent event;
    XNextEvent(display, &event);
    const Clock::time_point arrival = Clock::now();
    if (!XGetEventData(display, &event.xcookie)) continue;
    const auto* const key = static_cast<const XIDeviceEvent*>(event.xcookie.data);
    const bool isReturn =
        key->evtype == XI_KeyPress && key->detail == static_cast<int>(Key::kReturn);
    XFreeEventData(display, &event.xcookie);
    if (isReturn) return arrival;
  }
}

// Types a scan whose end key comes when everything before it has been read, and returns how long
// the end key took to arrive. It is waited for on another thread, which sleeps by then.
double endKeyMicroseconds(terminal::VirtualKeyboard& keyboard,
                          const std::function<Clock::time_point()>& awaitArrival) {
  std::future<Clock::time_point> arrival = std::async(std::launch::async, awaitArrival);
  terminal::type(keyboard, "4600051000057");
  std::this_thread::sleep_for(std::chrono::milliseconds(3));
  const Clock::time_point pressed = Clock::now();
  keyboard.press(Key::kReturn);
  const double time = Microseconds(arrival.get() - pressed).count();
  keyboard.release(Key::kReturn);
  return time;
}

// The two take turns on one server, so that whatever else the machine does meets both alike.
void endKeyToEvent(benchmark::State& state) {
  rig::XServer server(kNames);
  const rig::ScopedVariable display("DISPLAY", server.display());
  rig::XClient focused(server.display());
  focused.focus(focused.openWindow(focused.openWindow(focused.openWindow())));
  rig::Driver driver;
  driver.openKeyboard(terminal::toHostText(kNames[kDriven]));
  rig::XClient bare(server.display());
  if (!bare.grab(bare.device(kNames[kBare]))) throw std::runtime_error("no grab");

  std::vector<double> driverTimes, bareTimes;
  const auto driverArrival = [&] { return driver.event().time; };
  const auto bareArrival = [&] { return nextReturnOf(bare.get()); };
  for (auto iteration : state) {
    driverTimes.push_back(endKeyMicroseconds(server.keyboard(kDriven), driverArrival));
    bareTimes.push_back(endKeyMicroseconds(server.keyboard(kBare), bareArrival));
    state.SetIterationTime(driverTimes.back() / 1e6);
  }
  for (const auto& [percent, aim] : {std::pair{50, 1.05}, std::pair{99, 1.1}}) {
    bench::report({.what = "keyboard, end key to event, p" + std::to_string(percent),
                   .reference = "client blocking in XNextEvent",
                   .unit = "µs",
                   .own = bench::percentileOf(driverTimes, percent),
                   .ofReference = bench::percentileOf(bareTimes, percent),
                   .atMost = aim});
  }
  bench::reportDistribution("keyboard-latency", "the driver", driverTimes);
  bench::reportDistribution("keyboard-latency", "client blocking in XNextEvent", bareTimes);
}
BENCHMARK(endKeyToEvent)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(bench::repetitions(1000));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
