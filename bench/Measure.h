// What benchmarks make of the times that they have taken.
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/Report.h"

namespace bench {

inline double percentileOf(std::vector<double> values, double percent) {
  const auto rank = static_cast<double>(values.size() - 1) * percent / 100;
  const auto place = values.begin() + static_cast<std::ptrdiff_t>(rank);
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

inline double medianOf(const std::vector<double>& values) { return percentileOf(values, 50); }

// The processor time of this thread, so that other programs on a busy machine do not count.
inline double processorSeconds() {
  timespec now = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <typename Work>
double processorSecondsOf(const Work& work, std::int64_t times) {
  const double start = processorSeconds();
  for (std::int64_t i = 0; i < times; ++i) work();
  return processorSeconds() - start;
}

// What is compared, and how many times as fast as the reference it is to be.
struct Speed {
  std::string what;
  std::string reference;
  double aim;
};

// Runs `own` and `reference`, `times` times in each iteration, and reports how fast they get
// through the `bytes` that each run takes. The two take turns, so that whatever else the machine
// does slows both.
template <typename Own, typename Reference>
void compareSpeed(benchmark::State& state, const Speed& speed, std::int64_t times,
                  std::int64_t bytes, const Own& own, const Reference& reference) {
  std::vector<double> ownSeconds;
  std::vector<double> referenceSeconds;
  for (auto iteration : state) {
    ownSeconds.push_back(processorSecondsOf(own, times));
    referenceSeconds.push_back(processorSecondsOf(reference, times));
    state.SetIterationTime(ownSeconds.back() / static_cast<double>(times));
  }
  const double megabytes = 1e-6 * static_cast<double>(times * bytes);
  report({.what = speed.what,
          .reference = speed.reference,
          .unit = "MB/s",
          .own = megabytes / medianOf(ownSeconds),
          .ofReference = megabytes / medianOf(referenceSeconds),
          .atLeast = speed.aim});
}

}  // namespace bench
