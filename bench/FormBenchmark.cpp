// What the settings form costs beyond what it cannot do without, on a machine with three keyboards
// and four serial ports.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <vector>

#include "bench/BareListing.h"
#include "bench/Measure.h"
#include "tests/rig/DeviceFiles.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/XServer.h"

namespace {

using Seconds = std::chrono::duration<double>;

template <typename Work>
double secondsOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return Seconds(std::chrono::steady_clock::now() - start).count();
}

// The two take turns, so that whatever else the machine does meets both alike, and each goes first
// as often as the other. Medians: one late process start would outweigh a hundred others.
void formAgainstBareListing(benchmark::State& state) {
  const rig::DeviceFiles files = {"ttyS0", "ttyS1", "ttyACM0", "ttyUSB0"};
  const rig::XServer server({"Keyboard", "Scanner", "Another scanner"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  rig::Driver driver;
  std::vector<double> form;
  std::vector<double> bare;
  const auto takeForm = [&] {
    form.push_back(
        secondsOf([&] { benchmark::DoNotOptimize(driver.component.parameters().size()); }));
  };
  const auto takeBare = [&] {
    bare.push_back(secondsOf([] { benchmark::DoNotOptimize(bench::listBarely()); }));
  };
  bool formFirst = false;
  for (auto iteration : state) {
    formFirst = !formFirst;
    if (formFirst) takeForm();
    takeBare();
    if (!formFirst) takeForm();
    state.SetIterationTime(form.back());
  }
  state.counters["form_ms"] = 1000 * bench::medianOf(form);
  state.counters["bare_ms"] = 1000 * bench::medianOf(bare);
  state.counters["ratio"] = bench::medianOf(form) / bench::medianOf(bare);
}
BENCHMARK(formAgainstBareListing)
    ->Name("GetParameters")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(500);

}  // namespace

BENCHMARK_MAIN();
