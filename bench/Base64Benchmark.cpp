// The speed of the base64 coder as a multiple of GLib's.
#include <benchmark/benchmark.h>
#include <glib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/Measure.h"
#include "bench/Report.h"
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

// The aim is a speed, in multiples of GLib's, for each of the three sizes.
double aimFor(std::int64_t size) { return size <= 16 ? 1.0 : size <= 1000 ? 1.3 : 1.2; }

void compare(benchmark::State& state, const std::string& what, Coder own, Coder glib,
             const std::string& input) {
  const auto size = static_cast<std::int64_t>(input.size());
  bench::compareSpeed(
      state,
      {.what = what + ", " + std::to_string(state.range(0)) + " B",
       .reference = "GLib",
       .aim = aimFor(state.range(0))},
      std::max<std::int64_t>(1, kBytesPerBatch / size), size, [&] { own(input); },
      [&] { glib(input); });
}

void encoding(benchmark::State& state) {
  compare(state, "base64_encode", encode, encodeWithGLib,
          rawBytes(static_cast<std::size_t>(state.range(0))));
}

void decoding(benchmark::State& state) {
  const std::string raw = rawBytes(static_cast<std::size_t>(state.range(0)));
  compare(state, "base64_decode", decode, decodeWithGLib, quorvel::base64_encode(raw));
}

BENCHMARK(encoding)->Arg(16)->Arg(1000)->Arg(1'000'000)->UseManualTime()->Iterations(
    bench::repetitions(200));
BENCHMARK(decoding)->Arg(16)->Arg(1000)->Arg(1'000'000)->UseManualTime()->Iterations(
    bench::repetitions(200));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
