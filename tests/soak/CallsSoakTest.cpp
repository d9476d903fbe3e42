// Calls of any method with any values, one after another.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>
#include <limits>
#include <optional>
#include <random>
#include <string>

#include "tests/rig/Environment.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/UsbPort.h"
#include "tests/soak/Figures.h"
#include "tools/common/HostVariants.h"

namespace {

using rig::kUsb1;

constexpr long kGetParameters = 3;  // starts processes
constexpr long kDeviceTest = 7;

class RandomCalls {
 public:
  explicit RandomCalls(IComponentBase& component, terminal::HostMemory& memory)
      : component_(component), memory_(memory) {}

  void callOnce() {
    long number = static_cast<long>(below(12)) - 1;
    if (number == kGetParameters || number == kDeviceTest) number = below(2) ? 4 : 5;
    if (below(20) == 0) number = static_cast<std::int32_t>(random_());
    for (tVariant& param : params_) param = anyVariant();
    if (below(2)) params_[0] = terminal::textVariant(kNames[below(std::size(kNames))]);
    const std::array<tVariant, 7> before = params_;
    tVariant result = terminal::emptyVariant();
    component_.CallAsFunc(number, &result, params_.data(), 7);
    free(result);
    for (std::size_t i = 0; i < params_.size(); ++i) {
      if (params_[i].wide.text != before[i].wide.text) free(params_[i]);
    }
  }

 private:
  std::size_t below(std::size_t limit) { return random_() % limit; }

  // The pointer of a string is followed; nothing else is.
  tVariant anyVariant() {
    if (below(3) == 0) return terminal::textVariant(kTexts[below(std::size(kTexts))]);
    tVariant variant = terminal::emptyVariant();
    for (std::size_t i = 0; i < sizeof variant.wide; ++i) {
      reinterpret_cast<unsigned char*>(&variant)[i] = static_cast<unsigned char>(random_());
    }
    do {
      variant.vt = static_cast<std::uint16_t>(below(3) ? below(64) : random_());
    } while (variant.vt == VTYPE_PWSTR);
    return variant;
  }

  void free(tVariant& variant) {
    if (variant.vt != VTYPE_PWSTR) return;
    void* block = variant.wide.text;
    memory_.FreeMemory(&block);
  }

  static inline const std::u16string kNames[] = {
      u"Port",        u"KeyboardDevice", u"DataBits",      u"StopBit",       u"Speed",
      u"Prefix",      u"Suffix",         u"Timeout",       u"TimeoutCOM",    u"COMEncoding",
      u"GSSymbolKey", u"LogFileFolder",  u"EquipmentType", u"OutputDataType"};
  static inline const std::u16string kTexts[] = {
      u"",       u"InputDevice#1", u"СканерШтрихкода",        u"UTF-8",
      u"\xD800", u"Plain scanner", std::u16string(3000, u'Ж')};

  std::mt19937 random_{20};
  IComponentBase& component_;
  terminal::HostMemory& memory_;
  std::array<tVariant, 7> params_;
};

TEST(SoakOfCalls, WithAnyValues) {
  const rig::ScopedVariable noDisplay("DISPLAY", std::nullopt);
  rig::SerialDriver driver;
  RandomCalls calls(driver.component.object(), driver.component.memory());
  const auto end = std::chrono::steady_clock::now() + soak::duration();
  long count = 0;
  for (; std::chrono::steady_clock::now() < end; ++count) calls.callOnce();

  terminal::SerialLine& line = driver.plugIn(kUsb1);
  driver.component.setParameter(u"Suffix", 13);
  driver.component.setParameter(u"OutputDataType", 0);
  driver.open(kUsb1);
  line.send("later\r");
  const std::u16string data = driver.event().data;
  soak::report("calls with any values", "a scan arrives after them",
               std::to_string(count) + " calls, " +
                   std::to_string(driver.component.memory().blocksOut()) + " blocks left");
  EXPECT_EQ(data, u"later");
}

}  // namespace
