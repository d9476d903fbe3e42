// Driver methods called with any number, any variants and any texts, one after another.
#include <fuzzer/FuzzedDataProvider.h>
#include <stdlib.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>

#include "addin/QuorvelNative.h"
#include "fuzz/Require.h"
#include "host/IMemoryManager.h"
#include "tools/common/IdleConnection.h"
#include "util/Variants.h"

namespace {

using quorvel::emptyVariant;

constexpr std::size_t kMostParameters = 7;
constexpr std::size_t kLongestText = 40;

// Each call of these starts processes, which would leave little time for the others.
constexpr long kGetParameters = 3;
constexpr long kDeviceTest = 7;

// Frees what it has given out when it is destroyed.
class Memory : public IMemoryManager {
 public:
  bool AllocMemory(void** block, unsigned long bytes) override {
    *block = blocks_.emplace_back(bytes, '\0').data();
    return true;
  }
  void FreeMemory(void** block) override { *block = nullptr; }

 private:
  std::deque<std::string> blocks_;  // does not move its elements
};

// A variant of any type whose value is any bytes, except that the pointer of a string is null or
// points to a text of the given length: a component has to follow it.
class AnyVariant {
 public:
  explicit AnyVariant(FuzzedDataProvider& input) {
    const bool isText = input.ConsumeBool();
    variant_.vt = isText ? VTYPE_PWSTR : input.ConsumeIntegral<std::uint16_t>();
    if (variant_.vt == VTYPE_PWSTR) {
      setText(input);
    } else {
      const std::string bytes = input.ConsumeBytesAsString(sizeof variant_.wide);
      std::memcpy(&variant_, bytes.data(), bytes.size());
    }
  }

  const tVariant& get() const { return variant_; }

 private:
  void setText(FuzzedDataProvider& input) {
    if (input.ConsumeBool()) {
      variant_.wide.length = input.ConsumeIntegral<std::uint32_t>();
      return;
    }
    for (auto left = input.ConsumeIntegralInRange<std::size_t>(0, kLongestText); left > 0; --left) {
      text_ += static_cast<char16_t>(input.ConsumeIntegral<std::uint16_t>());
    }
    setPointer(input.ConsumeBool());
  }

  void setPointer(bool lengthGiven) {
    variant_.wide.text = text_.data();
    variant_.wide.length = lengthGiven ? static_cast<std::uint32_t>(text_.size()) : 0;
  }

  std::u16string text_;
  tVariant variant_ = emptyVariant();
};

tVariant namedText(std::u16string& text) {
  tVariant variant = emptyVariant();
  variant.wide = {text.data(), static_cast<std::uint32_t>(text.size())};
  variant.vt = VTYPE_PWSTR;
  return variant;
}

std::u16string anyParameterName(FuzzedDataProvider& input) {
  static const std::u16string names[] = {
      u"Port",          u"KeyboardDevice", u"DataBits",
      u"StopBit",       u"Speed",          u"Prefix",
      u"Suffix",        u"Timeout",        u"TimeoutCOM",
      u"COMEncoding",   u"GSSymbolKey",    u"LogFileFolder",
      u"EquipmentType", u"OutputDataType", u"IgnoreKeyboardState"};
  return input.PickValueInArray(names);
}

void callAny(quorvel::QuorvelNative& component, FuzzedDataProvider& input) {
  const long number = input.ConsumeBool()
                          ? input.ConsumeIntegralInRange<long>(-1, 10)
                          : static_cast<long>(input.ConsumeIntegral<std::int32_t>());
  if (number == kGetParameters || number == kDeviceTest) return;
  std::deque<AnyVariant> variants;
  std::array<tVariant, kMostParameters> params{};
  for (tVariant& param : params) param = variants.emplace_back(input).get();
  std::u16string name = anyParameterName(input);
  if (input.ConsumeBool()) params[0] = namedText(name);

  tVariant result = emptyVariant();
  const bool called = component.CallAsFunc(number, &result, params.data(), 0);
  require(called == (number >= 0 && number < 9));
}

void expectWorking(quorvel::QuorvelNative& component) {
  std::u16string name = u"Suffix";
  std::array<tVariant, 2> params = {namedText(name), emptyVariant()};
  quorvel::setInt(params[1], 13);
  tVariant result = emptyVariant();
  require(component.CallAsFunc(4, &result, params.data(), 2));
  require(result.vt == VTYPE_BOOL && result.boolValue);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // There is no keyboard to open. Serial ports are missing in a private /dev.
  static const bool withoutDisplay = unsetenv("DISPLAY") == 0;
  require(withoutDisplay);
  FuzzedDataProvider input(data, size);
  terminal::IdleConnection connection;
  Memory memory;
  quorvel::QuorvelNative component(L"InputDevice", L"");
  component.setMemManager(&memory);
  require(component.Init(&connection));
  while (input.remaining_bytes() > 0) callAny(component, input);
  expectWorking(component);
  return 0;
}
