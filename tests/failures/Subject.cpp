#include "tests/failures/Subject.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "tests/rig/Threads.h"
#include "tools/common/HostText.h"
#include "tools/common/HostVariants.h"

namespace failures {

using namespace std::chrono_literals;
using rig::ExemptFromFailure;
using rig::FailingCalls;
using rig::SubjectToFailure;
using terminal::emptyVariant;

bool HostsMemory::AllocMemory(void** block, unsigned long bytes) {
  const ExemptFromFailure host;
  *block = std::malloc(bytes);
  return true;
}

void HostsMemory::FreeMemory(void** block) {
  std::free(*block);
  *block = nullptr;
}

bool HostsConnection::ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) {
  const ExemptFromFailure host;
  return HostConnection::ExternalEvent(source, message, data);
}

namespace {

// The places of the methods, as GetMethodName counts them.
enum Method : long { kGetParameters = 3, kSetParameter, kOpen, kClose, kDeviceTest };

}  // namespace

Subject::Subject() {
  driver_.component.object().setMemManager(&memory_);
  driver_.component.object().Init(&connection_);
}

bool Subject::call(long method, tVariant& result, tVariant* params, long count) {
  const SubjectToFailure subject;
  return driver_.component.object().CallAsFunc(method, &result, params, count);
}

bool Subject::setParameter(const std::u16string& name, const tVariant& value) {
  std::array<tVariant, 2> params = {terminal::textVariant(name), value};
  tVariant result = emptyVariant();
  return call(kSetParameter, result, params.data(), 2) && result.boolValue;
}

std::optional<std::u16string> Subject::open() {
  tVariant id = emptyVariant(), result = emptyVariant();
  const bool opened = call(kOpen, result, &id, 1) && result.boolValue;
  std::optional<std::u16string> text = takeText(id);
  return opened ? text : std::nullopt;
}

bool Subject::close(const std::u16string& id) {
  tVariant param = terminal::textVariant(id), result = emptyVariant();
  return call(kClose, result, &param, 1) && result.boolValue;
}

std::optional<std::u16string> Subject::parameters() {
  tVariant form = emptyVariant(), result = emptyVariant();
  const bool called = call(kGetParameters, result, &form, 1);
  std::optional<std::u16string> text = takeText(form);
  return called ? text : std::nullopt;
}

bool Subject::test() {
  std::array<tVariant, 2> outputs = {emptyVariant(), emptyVariant()};
  tVariant result = emptyVariant();
  const bool called = call(kDeviceTest, result, outputs.data(), 2);
  for (tVariant& output : outputs) takeText(output);
  return called && result.boolValue;
}

void Subject::live(const tVariant& port) {
  const std::u16string className = u"CardReaderDevice", name = u"Port";
  std::array<tVariant, 2> params = {terminal::textVariant(name), port};
  tVariant id = emptyVariant(), result = emptyVariant();
  {
    const SubjectToFailure subject;
    IComponentBase* object = nullptr;
    if (driver_.library.GetClassObject(className.c_str(), &object) == 0) return;
    object->setMemManager(&memory_);
    object->Init(&connection_);
    object->CallAsFunc(kSetParameter, &result, params.data(), 2);
    object->CallAsFunc(kOpen, &result, &id, 1);
    driver_.library.DestroyObject(&object);
  }
  takeText(id);
}

std::optional<std::u16string> Subject::takeText(tVariant& variant) {
  if (variant.vt != VTYPE_PWSTR || !variant.wide.text) return std::nullopt;
  std::u16string text(variant.wide.text, variant.wide.length);
  void* block = variant.wide.text;
  memory_.FreeMemory(&block);
  return text;
}

namespace {

// How long an ordinary step takes at most while calls fail and nobody tells.
constexpr auto kMoment = 50ms;

void awaitEventOrFailure(Subject& subject, unsigned times, bool& firstCame) {
  rig::await("an event or a failure", [&] {
    firstCame = subject.events().take(0ms).has_value();
    return firstCame || FailingCalls::failed() > 0;
  });
  // Time to fail again.
  if (!firstCame && times > 1) firstCame = subject.events().take(kMoment).has_value();
}

// Whether the device has gone or the scan only been lost, a scanner's user scans again.
void expectLaterScan(Subject& subject, const Scan& scan, const rig::Failure& failure,
                     bool firstCame) {
  const auto end = std::chrono::steady_clock::now() + rig::kPatience;
  while (std::chrono::steady_clock::now() < end) {
    scan("later");
    const auto event = subject.events().take(kMoment);
    if (!event) continue;
    if (event->data == u"later") return;
    EXPECT_FALSE(std::exchange(firstCame, true)) << "doubled";
    // A burst that ends in the middle of a scan is discarded, and what follows stands for itself.
    const bool burstEnds = failure.call == rig::Call::kRead && failure.error == 0;
    EXPECT_TRUE(event->data == u"first" ||
                (burstEnds && std::u16string_view(u"first").ends_with(event->data)))
        << terminal::toUtf8(event->data);
  }
  ADD_FAILURE() << "a later scan does not arrive";
}

struct Holdings {
  std::size_t threads;
  std::size_t descriptors;
  long blocks;

  static Holdings now() {
    return {rig::settledThreadCount(), rig::descriptorCount(), rig::blocksAllocated()};
  }
  bool isWithin(const Holdings& other) const {
    return threads <= other.threads && descriptors <= other.descriptors && blocks <= other.blocks;
  }
};

}  // namespace

void expectNothingLeft(const std::function<void()>& action) {
  action();
  Holdings before = Holdings::now();
  for (int run = 0; run < 3; ++run) {
    action();
    const Holdings after = Holdings::now();
    if (after.isWithin(before) || testing::Test::HasFailure()) return;
    std::exchange(before, after);
  }
  ADD_FAILURE() << "left behind each time; now " << before.threads << " threads, "
                << before.descriptors << " descriptors, " << before.blocks << " blocks";
}

void leavingNothing(const rig::Sweep& sweep, const std::function<void()>& action) {
  if (sweep.onlyEvery) {
    action();
  } else {
    expectNothingLeft(action);
  }
}

void expectScansSurvive(Subject& subject, const std::function<void(Subject&)>& setUp,
                        const Scan& scan, const rig::Sweep& sweep, unsigned first) {
  const auto openAndScan = [&] {
    std::optional<std::u16string> id;
    bool firstCame = false;
    {
      const FailingCalls failing(sweep.failure, first, sweep.times);
      setUp(subject);
      id = subject.open();
      if (id) {
        scan("first");
        awaitEventOrFailure(subject, sweep.times, firstCame);
      }
    }
    if (!id) {
      setUp(subject);
      // The X server may take a moment to notice that an attempt which was ended has gone.
      rig::await("opening again", [&] { return (id = subject.open()).has_value(); });
    }
    expectLaterScan(subject, scan, sweep.failure, firstCame);
    EXPECT_TRUE(subject.close(*id));
    while (subject.events().take(0ms)) continue;
  };
  leavingNothing(sweep, openAndScan);
}

void expectEndsOnlyIn(const rig::Ends& ends, std::initializer_list<const char*> libraries) {
  for (const auto& [culprit, count] : ends) {
    bool isNamed = false;
    for (const char* const library : libraries) isNamed = isNamed || culprit.starts_with(library);
    EXPECT_TRUE(isNamed) << count << " times, in " << culprit;
  }
}

}  // namespace failures
