// What the settings form costs beyond what it cannot do without, on a machine with three keyboards
// and four serial ports.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <vector>

#include "bench/BareListing.h"
#include "bench/Measure.h"
#include "bench/Report.h"
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
  bench::report({.what = "GetParameters",
                 .reference = "three find runs and one X listing",
                 .unit = "ms",
                 .own = 1000 * bench::medianOf(form),
                 .ofReference = 1000 * bench::medianOf(bare),
                 .atMost = 1.05});
}
BENCHMARK(formAgainstBareListing)
    ->Name("GetParameters")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(bench::repetitions(500));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
