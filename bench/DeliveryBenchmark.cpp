// From the bytes of a scan to the host's event: what it takes beyond the copies that it cannot do
// without, with a host that does nothing.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "addin/QuorvelNative.h"
#include "bench/AllocationCount.h"
#include "bench/Measure.h"
#include "bench/Report.h"
#include "performer/Equipment.h"
#include "tools/common/IdleConnection.h"
#include "util/Base64.h"
#include "util/CodePages.h"
#include "util/OutputData.h"

namespace {

constexpr std::int64_t kEventsPerBatch = 1000;

class IdleHost : public terminal::IdleConnection {
 public:
  bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override {
    benchmark::DoNotOptimize(source);
    benchmark::DoNotOptimize(message);
    benchmark::DoNotOptimize(data);
    return true;
  }
};

// What a reader does with a complete message, and the component with what the reader hands over.
void deliver(quorvel::QuorvelNative& component, const std::wstring& source,
             const std::wstring& encoding, const std::string& scan) {
  const std::string base64 = quorvel::raw2Base64(scan);
  component.OnInput(source, quorvel::kBarcodeScanner, quorvel::kText,
                    quorvel::ConvertMbsToWcs(base64, encoding));
}

// The forms of the scan that are fixed, each made once from the one before: base64 text, the same
// in wide characters, the bytes, and the three texts of the host, which are its to write to.
void copyBarely(IAddInDefBaseEx& host, const std::wstring& source, const std::wstring& name,
                const std::string& scan) {
  const std::string base64 = quorvel::base64_encode(scan);
  const std::wstring wide(base64.begin(), base64.end());
  const std::string bytes = quorvel::base64_decode(std::string(wide.begin(), wide.end()));
  std::u16string eventSource(source.begin(), source.end());
  std::u16string eventName(name.begin(), name.end());
  std::u16string eventData(bytes.begin(), bytes.end());
  host.ExternalEvent(eventSource.data(), eventName.data(), eventData.data());
}

void delivery(benchmark::State& state) {
  const std::string scan = "4600051000057";
  const std::wstring source = L"InputDevice#1";
  const std::wstring name = L"Штрихкод";
  const std::wstring encoding(quorvel::kEncodingUtf8);
  IdleHost host;
  quorvel::QuorvelNative component(L"InputDevice", L"Barcode");
  component.Init(&host);
  const auto own = [&] { deliver(component, source, encoding, scan); };
  const auto bare = [&] { copyBarely(host, source, name, scan); };

  std::vector<double> ownSeconds, bareSeconds;
  for (auto iteration : state) {
    ownSeconds.push_back(bench::processorSecondsOf(own, kEventsPerBatch));
    bareSeconds.push_back(bench::processorSecondsOf(bare, kEventsPerBatch));
    state.SetIterationTime(ownSeconds.back() / kEventsPerBatch);
  }
  bench::Figure figure = {.what = "event delivery, time",
                          .reference = "the copies it cannot avoid",
                          .unit = "ns",
                          .own = 1e9 * bench::medianOf(ownSeconds) / kEventsPerBatch,
                          .ofReference = 1e9 * bench::medianOf(bareSeconds) / kEventsPerBatch,
                          .atMost = 2};
  bench::report(figure);
  const auto allocationsOf = [](const auto& work) {
    const std::size_t before = bench::allocationCount();
    work();
    return static_cast<double>(bench::allocationCount() - before);
  };
  figure.what = "event delivery, allocations";
  figure.unit = "";
  figure.own = allocationsOf(own);
  figure.ofReference = allocationsOf(bare);
  bench::report(figure);
}
BENCHMARK(delivery)
    ->UseManualTime()
    ->Unit(benchmark::kNanosecond)
    ->Iterations(bench::repetitions(500));

}  // namespace

int main(int argc, char** argv) { return bench::run(argc, argv); }
