// What a benchmark has found: lines of JSON on standard output, which scripts/bench gathers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace bench {

// The driver's own value beside that of a reference, which was measured in the same run.
struct Figure {
  std::string what = {};
  std::string reference = {};
  std::string unit = {};
  double own = 0;
  double ofReference = 0;
  // What own / ofReference is to be; neither, where the figure is only to be known.
  std::optional<double> atMost = {};
  std::optional<double> atLeast = {};
};
void report(const Figure& figure);

// The distribution of the values, as one line of the plot.
void reportDistribution(const std::string& plot, const std::string& line,
                        const std::vector<double>& values);

// One point on a line of the plot.
void reportPoint(const std::string& plot, const std::string& line, double x, double y);

// How often to repeat what is usually repeated so many times: no more often than
// QUORVEL_BENCH_REPETITIONS in the environment, where that is set.
std::int64_t repetitions(std::int64_t usual);

// Runs the benchmarks of this program, which may be chosen by the options of Google Benchmark,
// whose own table goes to standard error. Returns the exit code.
int run(int argc, char** argv);

}  // namespace bench
