// The speed of the functions that turn the bytes of a scan into what is shown, as a multiple of a
// loop that copies.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "bench/Measure.h"
#include "bench/Report.h"
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

template <typename Own>
void compareWithCopy(benchmark::State& state, const std::string& what, const std::string& text,
                     const Own& own) {
  bench::compareSpeed(state, {.what = what, .reference = "a loop that copies", .aim = 0.5}, 1,
                      kSize, own, [&] { copyByByte(text); });
}

void readableForm(benchmark::State& state) {
  const std::string text = scans();
  compareWithCopy(state, "readable form, 1 MB", text,
                  [&] { benchmark::DoNotOptimize(quorvel::raw2HRS(text).data()); });
}
BENCHMARK(readableForm)->UseManualTime()->Iterations(bench::repetitions(200));

void trimXMLIllegalChars(benchmark::State& state) {
  const std::string text = scans();
  const auto trimCopy = [&] {
    std::string copy = text;
    benchmark::DoNotOptimize(quorvel::TrimXMLIllegalChars(copy));
  };
  compareWithCopy(state, "TrimXMLIllegalChars, 1 MB", text, trimCopy);
}
BENCHMARK(trimXMLIllegalChars)->UseManualTime()->Iterations(bench::repetitions(200));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
