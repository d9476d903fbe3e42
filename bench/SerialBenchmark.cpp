// What the driver costs on a serial port beside a reader that does nothing but read.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/AllocationCount.h"
#include "bench/BareSerialReader.h"
#include "bench/Measure.h"
#include "bench/Report.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"
#include "tools/common/HostText.h"

namespace {

using Clock = std::chrono::system_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr std::int32_t kUsb1 = 129;
constexpr std::int32_t kUsb2 = 130;
constexpr std::string_view kScan = "4600051000057\r";
constexpr std::size_t kScansPerBatch = 1000;

// One reader, its thread and the line it reads.
struct Reader {
  explicit Reader(terminal::SerialLine& itsLine) : line(itsLine) {}

  terminal::SerialLine& line;
  pid_t thread = 0;
  std::vector<double> latencies;    // microseconds
  std::vector<double> throughput;   // scans per second
  std::vector<double> processor;    // microseconds per scan, of the reader's thread
  std::vector<double> allocations;  // per scan, those of the host included
};

// The driver and the bare reader in one process, each on a line of its own, with one host.
class SideBySide {
 public:
  SideBySide() {
    driven.thread = rig::threadAddedBy([this] { driver_.open(kUsb1); });
    bare.thread = rig::threadAddedBy([this] {
      bareReader_ = std::make_unique<bench::BareSerialReader>(
          rig::portPath(kUsb2), [this](const std::string& scan) { raise(scan); });
    });
  }

  // The time from the last byte of a scan to its event. The reader sleeps until then.
  void measureLatency(Reader& reader) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const Clock::time_point sent = Clock::now();
    reader.line.send(kScan);
    reader.latencies.push_back(Microseconds(driver_.event().time - sent).count());
  }

  void measureBatch(Reader& reader) {
    const auto processorBefore = rig::processorTime(reader.thread);
    const std::size_t allocationsBefore = bench::allocationCount();
    const auto start = std::chrono::steady_clock::now();
    reader.line.send(batch_);
    for (std::size_t i = 0; i < kScansPerBatch; ++i) driver_.event();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    const std::size_t allocations = bench::allocationCount() - allocationsBefore;
    const Microseconds processor = rig::processorTime(reader.thread) - processorBefore;
    reader.throughput.push_back(kScansPerBatch / time.count());
    reader.processor.push_back(processor.count() / kScansPerBatch);
    reader.allocations.push_back(static_cast<double>(allocations) / kScansPerBatch);
  }

 private:
  void raise(const std::string& scan) {
    std::u16string source = u"InputDevice#0";
    std::u16string name = u"Barcode";
    std::u16string data = terminal::toHostText(scan);
    driver_.component.connection().ExternalEvent(source.data(), name.data(), data.data());
  }

  rig::SerialDriver driver_;
  std::unique_ptr<bench::BareSerialReader> bareReader_;
  std::string batch_ = [] {
    std::string scans;
    for (std::size_t i = 0; i < kScansPerBatch; ++i) scans += kScan;
    return scans;
  }();

 public:
  Reader driven{driver_.plugIn(kUsb1)};
  Reader bare{driver_.plugIn(kUsb2)};
};

// A percentile of each, with the unit and the aim of `figure`.
void report(bench::Figure figure, const std::vector<double>& driven,
            const std::vector<double>& bare, double percent = 50) {
  figure.reference = "bare reader";
  figure.own = bench::percentileOf(driven, percent);
  figure.ofReference = bench::percentileOf(bare, percent);
  bench::report(figure);
}

// The two take turns, so that whatever else the machine does meets both alike.
void latency(benchmark::State& state) {
  SideBySide test;
  for (auto iteration : state) {
    test.measureLatency(test.driven);
    test.measureLatency(test.bare);
    state.SetIterationTime(test.driven.latencies.back() / 1e6);
  }
  const std::vector<double>& driven = test.driven.latencies;
  const std::vector<double>& bare = test.bare.latencies;
  report({.what = "serial latency, p50", .unit = "µs", .atMost = 1.05}, driven, bare, 50);
  report({.what = "serial latency, p99", .unit = "µs", .atMost = 1.2}, driven, bare, 99);
  bench::reportDistribution("serial-latency", "the driver", driven);
  bench::reportDistribution("serial-latency", "bare reader", bare);
}
BENCHMARK(latency)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(bench::repetitions(2000));

void manyScans(benchmark::State& state) {
  SideBySide test;
  for (auto iteration : state) {
    test.measureBatch(test.driven);
    test.measureBatch(test.bare);
    state.SetIterationTime(1 / test.driven.throughput.back());
  }
  report({.what = "serial throughput", .unit = "scans/s", .atLeast = 0.95}, test.driven.throughput,
         test.bare.throughput);
  report({.what = "CPU time per scan", .unit = "µs", .atMost = 1.15}, test.driven.processor,
         test.bare.processor);
  report({.what = "allocations per scan, the host's included", .unit = ""}, test.driven.allocations,
         test.bare.allocations);
}
BENCHMARK(manyScans)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(bench::repetitions(100));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
