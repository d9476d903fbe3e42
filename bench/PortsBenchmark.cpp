// What many open ports cost: the latency of one scan among them, memory and threads.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/Measure.h"
#include "bench/Memory.h"
#include "bench/Report.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"

namespace {

using Microseconds = std::chrono::duration<double, std::micro>;

constexpr std::string_view kScan = "4600051000057\r";
constexpr std::int32_t kCounts[] = {1, 8, 64, 192};
constexpr std::int32_t kMost = 192;

double latencyOfOneScan(rig::SerialDriver& driver, std::size_t port) {
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
  const auto sent = std::chrono::system_clock::now();
  driver.lines[port].send(kScan);
  return Microseconds(driver.event().time - sent).count();
}

struct OpenPorts {
  std::vector<double> inUse;      // latencies at the one port that is scanned at, in microseconds
  std::vector<double> scattered;  // at another port than the last scan each, whose thread is cold
  double memory = 0;
  std::size_t threads = 0;
};

// So many ports, opened on top of what is there; then scans.
OpenPorts openAndScan(std::int32_t count, std::int64_t scans) {
  rig::SerialDriver driver;
  for (std::int32_t port = 1; port <= count; ++port) driver.plugIn(port);
  OpenPorts result;
  const double memory = bench::memoryInUse().dirty;
  const std::size_t threads = rig::settledThreadCount();
  for (std::int32_t port = 1; port <= count; ++port) driver.open(port);
  const auto last = static_cast<std::size_t>(count) - 1;
  for (std::int64_t scan = 0; scan < scans; ++scan) {
    result.inUse.push_back(latencyOfOneScan(driver, last));
  }
  for (std::int64_t scan = 0; scan < scans; ++scan) {
    const auto port = static_cast<std::size_t>(scan * 7 % count);
    result.scattered.push_back(latencyOfOneScan(driver, port));
  }
  result.memory = bench::memoryInUse().dirty - memory;
  result.threads = rig::settledThreadCount() - threads;
  return result;
}

void append(std::vector<double>& all, const std::vector<double>& some) {
  all.insert(all.end(), some.begin(), some.end());
}

// The numbers of ports take turns, so that whatever else the machine does meets all alike.
void openPorts(benchmark::State& state) {
  constexpr std::int64_t kScansPerTurn = 200;
  OpenPorts of[kMost + 1];
  openAndScan(1, 1);  // what the first port of all takes is not this one's
  for (auto iteration : state) {
    for (const std::int32_t count : kCounts) {
      const OpenPorts turn = openAndScan(count, bench::repetitions(kScansPerTurn));
      append(of[count].inUse, turn.inUse);
      append(of[count].scattered, turn.scattered);
      if (of[count].threads == 0) of[count].memory = turn.memory;
      of[count].threads = turn.threads;
    }
    state.SetIterationTime(of[kMost].inUse.back() / 1e6);
  }
  const OpenPorts& one = of[1];
  for (const std::int32_t count : kCounts) {
    const OpenPorts& ports = of[count];
    const double latency = bench::medianOf(ports.inUse);
    const double scattered = bench::medianOf(ports.scattered);
    bench::reportPoint("ports-latency", "scans at one of them, p50", count, latency);
    bench::reportPoint("ports-latency", "each scan at another of them, p50", count, scattered);
    bench::reportPoint("ports-memory", "memory of all", count, ports.memory);
    if (count == 1) continue;
    const std::string what = std::to_string(count) + " ports open, ";
    bench::Figure figure = {.what = what + "latency of one scan, p50",
                            .reference = "1 port",
                            .unit = "µs",
                            .own = latency,
                            .ofReference = bench::medianOf(one.inUse)};
    if (count == kMost) figure.atMost = 1.3;
    bench::report(figure);
    bench::report({.what = what + "latency at changing ports, p50",
                   .reference = "1 port",
                   .unit = "µs",
                   .own = scattered,
                   .ofReference = bench::medianOf(one.inUse)});
    bench::report({.what = what + "memory of each",
                   .reference = "1 port",
                   .unit = "kB",
                   .own = ports.memory / count,
                   .ofReference = one.memory});
    bench::report({.what = what + "threads of each",
                   .reference = "1 port",
                   .own = static_cast<double>(ports.threads) / count,
                   .ofReference = static_cast<double>(one.threads)});
  }
}
BENCHMARK(openPorts)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(bench::repetitions(5));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
