// The driver beside what programs in other languages read serial ports with.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/Measure.h"
#include "bench/Report.h"
#include "tests/rig/Program.h"
#include "tests/rig/SerialDriver.h"

namespace {

using Microseconds = std::chrono::duration<double, std::micro>;
using Steady = std::chrono::steady_clock;

constexpr std::int32_t kUsb1 = 129;
constexpr std::int32_t kUsb2 = 130;
constexpr std::int32_t kUsb3 = 131;
constexpr std::string_view kScan = "4600051000057\r";
constexpr std::size_t kScansPerBatch = 1000;

const std::string kPython = "python3-serial";
const std::string kNode = "node serialport";

// The words that start one of the readers, but for its port.
rig::Words program(const std::string& reader) {
  const char* const folder = std::getenv("QUORVEL_READERS");
  if (!folder) throw std::runtime_error("QUORVEL_READERS is not set");
  // The distribution's interpreter, which has the distribution's modules.
  return reader == kPython
             ? rig::Words{"/usr/bin/python3", std::string(folder) + "/python-serial.py"}
             : rig::Words{"node", std::string(folder) + "/node-serialport.js"};
}

// A program that reads the port and tells when every so many scans have come.
class OtherReader {
 public:
  OtherReader(const std::string& reader, std::int32_t port, std::size_t every)
      : program_([&] {
          rig::Words words = program(reader);
          words.insert(words.end(), {rig::portPath(port), std::to_string(every)});
          return words;
        }()) {
    if (program_.line() != "ready") throw std::runtime_error(reader + " is not ready");
  }

  // A thread's clock is every process's.
  Steady::time_point awaitScans() {
    return Steady::time_point(std::chrono::nanoseconds(std::stoll(program_.line())));
  }

 private:
  rig::Program program_;
};

// They take turns, so that whatever else the machine does meets all alike. Each sleeps until its
// scan comes.
void latency(benchmark::State& state) {
  rig::SerialDriver driver;
  terminal::SerialLine& line = driver.plugIn(kUsb1);
  driver.open(kUsb1);
  terminal::SerialLine& pythonLine = driver.plugIn(kUsb2);
  OtherReader python(kPython, kUsb2, 1);
  terminal::SerialLine& nodeLine = driver.plugIn(kUsb3);
  OtherReader node(kNode, kUsb3, 1);

  std::vector<double> ofDriver, ofPython, ofNode;
  const auto measure = [](OtherReader& reader, terminal::SerialLine& itsLine) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const Steady::time_point sent = Steady::now();
    itsLine.send(kScan);
    return Microseconds(reader.awaitScans() - sent).count();
  };
  for (auto iteration : state) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const auto sent = std::chrono::system_clock::now();
    line.send(kScan);
    ofDriver.push_back(Microseconds(driver.event().time - sent).count());
    ofPython.push_back(measure(python, pythonLine));
    ofNode.push_back(measure(node, nodeLine));
    state.SetIterationTime(ofDriver.back() / 1e6);
  }
  const auto report = [&](const std::string& reader, const std::vector<double>& times) {
    bench::report({.what = "serial latency, p50",
                   .reference = reader,
                   .unit = "µs",
                   .own = bench::medianOf(ofDriver),
                   .ofReference = bench::medianOf(times),
                   .atMost = 1 / 3.0});
    bench::reportDistribution("readers-latency", reader, times);
  };
  bench::reportDistribution("readers-latency", "the driver", ofDriver);
  report(kPython, ofPython);
  report(kNode, ofNode);
}
BENCHMARK(latency)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(bench::repetitions(1000));

void manyScans(benchmark::State& state) {
  rig::SerialDriver driver;
  terminal::SerialLine& line = driver.plugIn(kUsb1);
  driver.open(kUsb1);
  terminal::SerialLine& pythonLine = driver.plugIn(kUsb2);
  OtherReader python(kPython, kUsb2, kScansPerBatch);
  std::string batch;
  for (std::size_t i = 0; i < kScansPerBatch; ++i) batch += kScan;

  using Seconds = std::chrono::duration<double>;
  std::vector<double> ofDriver, ofPython;
  for (auto iteration : state) {
    Steady::time_point start = Steady::now();
    line.send(batch);
    for (std::size_t i = 0; i < kScansPerBatch; ++i) driver.event();
    ofDriver.push_back(kScansPerBatch / Seconds(Steady::now() - start).count());
    start = Steady::now();
    pythonLine.send(batch);
    ofPython.push_back(kScansPerBatch / Seconds(python.awaitScans() - start).count());
    state.SetIterationTime(1 / ofDriver.back());
  }
  bench::report({.what = "serial throughput",
                 .reference = kPython,
                 .unit = "scans/s",
                 .own = bench::medianOf(ofDriver),
                 .ofReference = bench::medianOf(ofPython),
                 .atLeast = 6});
}
BENCHMARK(manyScans)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(bench::repetitions(20));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
