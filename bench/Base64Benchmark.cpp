// The speed of the base64 coder as a multiple of GLib's.
#include <benchmark/benchmark.h>
#include <glib.h>
#include <time.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "util/Base64.h"

namespace {

constexpr std::int64_t kBytesPerBatch = 1 << 20;

struct GFreer {
  void operator()(void* memory) const { g_free(memory); }
};

std::string rawBytes(std::size_t size) {
  std::string raw(size, '\0');
  std::uint32_t number = 1;
  for (char& byte : raw) {
    number = number * 1664525U + 1013904223U;
    byte = static_cast<char>(number >> 24);
  }
  return raw;
}

void encodeWithGLib(const std::string& raw) {
  const auto* const bytes = reinterpret_cast<const guchar*>(raw.data());
  const std::unique_ptr<gchar, GFreer> text(g_base64_encode(bytes, raw.size()));
  benchmark::DoNotOptimize(text.get());
}

void decodeWithGLib(const std::string& text) {
  gsize size = 0;
  const std::unique_ptr<guchar, GFreer> raw(g_base64_decode(text.c_str(), &size));
  benchmark::DoNotOptimize(raw.get());
}

void encode(const std::string& raw) {
  const std::string text = quorvel::base64_encode(raw);
  benchmark::DoNotOptimize(text.data());
}

void decode(const std::string& text) {
  const std::string raw = quorvel::base64_decode(text);
  benchmark::DoNotOptimize(raw.data());
}

using Coder = void (*)(const std::string&);

// Of this thread, so that other programs on a busy machine do not count.
double cpuSeconds() {
  timespec now = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double secondsOf(Coder coder, const std::string& input, std::int64_t times) {
  const double start = cpuSeconds();
  for (std::int64_t i = 0; i < times; ++i) coder(input);
  return cpuSeconds() - start;
}

double medianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The two take turns, so that whatever else the machine does slows both.
void compare(benchmark::State& state, Coder own, Coder glib, const std::string& input) {
  const std::int64_t times =
      std::max<std::int64_t>(1, kBytesPerBatch / static_cast<std::int64_t>(input.size()));
  std::vector<double> ownSeconds;
  std::vector<double> glibSeconds;
  for (auto iteration : state) {
    ownSeconds.push_back(secondsOf(own, input, times));
    glibSeconds.push_back(secondsOf(glib, input, times));
    state.SetIterationTime(ownSeconds.back() / static_cast<double>(times));
  }
  state.counters["times_glib"] = medianOf(glibSeconds) / medianOf(ownSeconds);
}

void encoding(benchmark::State& state) {
  compare(state, encode, encodeWithGLib, rawBytes(static_cast<std::size_t>(state.range(0))));
}

void decoding(benchmark::State& state) {
  const std::string raw = rawBytes(static_cast<std::size_t>(state.range(0)));
  compare(state, decode, decodeWithGLib, quorvel::base64_encode(raw));
}

BENCHMARK(encoding)->Arg(16)->Arg(1000)->Arg(1'000'000)->UseManualTime()->Iterations(200);
BENCHMARK(decoding)->Arg(16)->Arg(1000)->Arg(1'000'000)->UseManualTime()->Iterations(200);

}  // namespace

BENCHMARK_MAIN();
