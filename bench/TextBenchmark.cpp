// The speed of the functions that turn the bytes of a scan into what is shown, as a multiple of a
// loop that copies.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "bench/Measure.h"
#include "util/DeviceNames.h"
#include "util/HumanReadable.h"

namespace {

constexpr std::size_t kSize = 1'000'000;
// As scans are: text with a separator now and then.
constexpr std::string_view kScan =
    "010460005100005721ABCDEFG\x1D"
    "17261231"
    "10LOT-42\x1D"
    "37100";

std::string scans() {
  std::string bytes;
  while (bytes.size() < kSize) bytes += kScan;
  bytes.resize(kSize);
  return bytes;
}

void copyByByte(const std::string& text) {
  std::string copy(text.size(), '\0');
  char* out = copy.data();
  for (const char byte : text) {
    *out++ = byte;
    // Or the compiler makes one call of memcpy out of the loop.
    benchmark::ClobberMemory();
  }
}

void readableForm(benchmark::State& state) {
  const std::string text = scans();
  bench::compareSpeed(
      state, "times_copy", 1, [&] { benchmark::DoNotOptimize(quorvel::raw2HRS(text).data()); },
      [&] { copyByByte(text); });
}
BENCHMARK(readableForm)->UseManualTime()->Iterations(200);

void trimXMLIllegalChars(benchmark::State& state) {
  const std::string text = scans();
  const auto trimCopy = [&] {
    std::string copy = text;
    benchmark::DoNotOptimize(quorvel::TrimXMLIllegalChars(copy));
  };
  bench::compareSpeed(state, "times_copy", 1, trimCopy, [&] { copyByByte(text); });
}
BENCHMARK(trimXMLIllegalChars)->UseManualTime()->Iterations(200);

}  // namespace

BENCHMARK_MAIN();
