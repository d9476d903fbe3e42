// What loading the library costs a host that has no window open, as a multiple of loading the X
// libraries that it cannot do without. Each load is that of a new process: what is in memory
// already costs nothing.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/Measure.h"
#include "bench/Memory.h"
#include "bench/Report.h"
#include "tests/rig/Program.h"

namespace {

constexpr const char* kLoad = "--load";

// The host: loads libraries, and prints the seconds and the memory that they took.
int load(const std::vector<const char*>& libraries) {
  bench::memoryInUse();  // so that what reading takes does not count
  const bench::Memory before = bench::memoryInUse();
  bool isLoaded = true;
  const double seconds = bench::processorSecondsOf(
      [&] {
        for (const char* const library : libraries)
          isLoaded &= dlopen(library, RTLD_NOW) != nullptr;
      },
      1);
  const bench::Memory after = bench::memoryInUse();
  if (!isLoaded) {
    std::cerr << dlerror() << '\n';
    return EXIT_FAILURE;
  }
  std::cout << seconds << ' ' << after.resident - before.resident << ' '
            << after.dirty - before.dirty << '\n';
  return EXIT_SUCCESS;
}

// The costs of several loads.
struct Loads {
  std::vector<double> seconds;
  std::vector<double> resident;
  std::vector<double> dirty;

  void add(const rig::Words& libraries) {
    rig::Words words = {"/proc/self/exe", kLoad};
    words.insert(words.end(), libraries.begin(), libraries.end());
    std::istringstream costs(rig::outputOf(words));
    for (std::vector<double>* const values : {&seconds, &resident, &dirty}) {
      double value = 0;
      if (!(costs >> value))
        throw std::runtime_error("a host printed something else than its costs");
      values->push_back(value);
    }
  }
};

void loadAgainstXLibraries(benchmark::State& state) {
  const char* const library = std::getenv("QUORVEL_LIBRARY");
  if (!library) throw std::runtime_error("QUORVEL_LIBRARY is not set");
  // What has just been built counts as dirty until it is on the disk.
  rig::outputOf({"sync", library});
  Loads own;
  Loads bare;
  for (auto iteration : state) {
    own.add({library});
    bare.add({"libX11.so.6", "libXi.so.6"});
    state.SetIterationTime(own.seconds.back());
  }
  using bench::medianOf;
  const auto report = [](const std::string& what, const std::string& unit, double factor,
                         const std::vector<double>& ofOwn, const std::vector<double>& ofBare) {
    bench::report({.what = "dlopen, " + what,
                   .reference = "libX11 and libXi alone",
                   .unit = unit,
                   .own = factor * medianOf(ofOwn),
                   .ofReference = factor * medianOf(ofBare)});
  };
  report("CPU time", "ms", 1000, own.seconds, bare.seconds);
  report("memory", "kB", 1, own.resident, bare.resident);
  report("memory of its own", "kB", 1, own.dirty, bare.dirty);
}
BENCHMARK(loadAgainstXLibraries)
    ->Name("dlopen")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(bench::repetitions(100));

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::string_view(argv[1]) == kLoad) return load({argv + 2, argv + argc});
  return bench::run(argc, argv);
}
