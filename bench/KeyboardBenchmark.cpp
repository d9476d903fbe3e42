// How long a scan is on its way from the end key to the host's event, and what an open keyboard
// costs while nobody scans.
#include <X11/extensions/XInput2.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/Measure.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Threads.h"
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
  for (const int percent : {50, 99}) {
    const std::string name = "p" + std::to_string(percent) + "_";
    const double ofDriver = bench::percentileOf(driverTimes, percent);
    const double ofBare = bench::percentileOf(bareTimes, percent);
    state.counters[name + "driver_us"] = ofDriver;
    state.counters[name + "bare_us"] = ofBare;
    state.counters[name + "ratio"] = ofDriver / ofBare;
  }
}
BENCHMARK(endKeyToEvent)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(1000);

void idleKeyboard(benchmark::State& state) {
  constexpr std::chrono::seconds kWatched{10};
  rig::XServer server(kNames);
  const rig::ScopedVariable display("DISPLAY", server.display());
  rig::Driver driver;
  const pid_t reader = rig::threadAddedBy([&] { driver.openKeyboard(u"Driven"); });
  for (auto iteration : state) {
    const auto before = rig::processorTime(reader);
    std::this_thread::sleep_for(kWatched);
    const std::chrono::duration<double> used = rig::processorTime(reader) - before;
    state.SetIterationTime(used.count());
    state.counters["percent_of_a_core"] = 100 * used / kWatched;
  }
}
BENCHMARK(idleKeyboard)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
