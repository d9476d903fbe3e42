// Input from a broken or hostile host: each call has a defined outcome, and the component keeps
// working.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "tests/rig/HostCodes.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/UsbPort.h"
#include "tests/rig/Variants.h"
#include "tools/common/HostVariants.h"

namespace {

using rig::kUsb1;
using rig::SerialDriver;
using terminal::emptyVariant;
using terminal::numberVariant;
using terminal::SerialLine;
using terminal::textVariant;

constexpr long kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr long kLargest = std::numeric_limits<std::int32_t>::max();

const std::u16string kLong(10000, u'Ж');

const char16_t* const kParameters[] = {
    u"Port",        u"KeyboardDevice", u"DataBits",      u"StopBit",        u"Speed",
    u"Prefix",      u"Suffix",         u"Timeout",       u"TimeoutCOM",     u"COMEncoding",
    u"GSSymbolKey", u"LogFileFolder",  u"EquipmentType", u"OutputDataType", u"IgnoreKeyboardState"};

// Expects a scan to arrive with the default settings.
void expectWorking(SerialDriver& driver) {
  driver.plugIn(kUsb1);
  driver.component.setParameter(u"Suffix", 13);
  driver.component.setParameter(u"OutputDataType", rig::kDataText);
  driver.component.setParameter(u"EquipmentType", std::u16string(u"СканерШтрихкода"));
  const std::u16string id = driver.open(kUsb1);
  driver.lines.back().send("scan\r");
  const terminal::Event event = driver.event();
  EXPECT_EQ(event.source, id);
  EXPECT_EQ(event.name, u"Штрихкод");
  EXPECT_EQ(event.data, u"scan");
  driver.closeAll();
  driver.lines.clear();
}

// A variant whose bytes other than the type code make no sense as any type.
tVariant hostile(std::uint16_t type) {
  tVariant variant = rig::untouchedVariant();
  variant.vt = type;
  return variant;
}

// The same, except for strings: their pointer is followed, so it must be valid.
tVariant hostileUnlessText(std::uint16_t type) {
  return type == VTYPE_PWSTR ? textVariant(kLong) : hostile(type);
}

TEST(BadInput, EveryParameterWithEveryTypeOfValue) {
  SerialDriver driver;
  for (const char16_t* const name : kParameters) {
    for (std::uint16_t type = 0; type < 64; ++type) {
      const tVariant value = hostileUnlessText(type);
      // The result only says that the name is known, not whether the value was accepted.
      EXPECT_TRUE(driver.component.setParameter(name, value)) << type;
    }
    EXPECT_TRUE(driver.component.setParameter(name, hostile(0xFFFF)));
  }
  expectWorking(driver);
}

TEST(BadInput, EveryParameterWithNullTexts) {
  SerialDriver driver;
  for (const char16_t* const name : kParameters) {
    for (const std::uint32_t length : {0U, 1U, 10000U, 0xFFFFFFFFU}) {
      for (const std::uint16_t type : {VTYPE_PWSTR, VTYPE_EMPTY, VTYPE_I4}) {
        tVariant value = emptyVariant();
        value.wide.length = length;
        value.vt = type;
        EXPECT_TRUE(driver.component.setParameter(name, value));
      }
    }
  }
  expectWorking(driver);
}

TEST(BadInput, ARefusedTypeChangesNothing) {
  SerialDriver driver;
  driver.plugIn(kUsb1);
  driver.component.setParameter(u"Port", kUsb1);
  for (const char16_t* const name : {u"Port", u"Suffix", u"OutputDataType"}) {
    for (const std::uint16_t type :
         {VTYPE_EMPTY, VTYPE_BOOL, VTYPE_UI2, VTYPE_UI4, VTYPE_I8, VTYPE_UI8, VTYPE_PWSTR}) {
      tVariant value = type == VTYPE_PWSTR ? textVariant(kLong) : numberVariant(7);
      value.vt = type;
      EXPECT_TRUE(driver.component.setParameter(name, value));
    }
  }
  tVariant equipment = textVariant(u"СчитывательМагнитныхКарт");
  equipment.vt = VTYPE_EMPTY;
  driver.component.setParameter(u"EquipmentType", equipment);
  for (const char16_t* const unknown :
       {u"CardReader", u"TrackData", u"", u"считывательмагнитныхкарт"}) {
    EXPECT_TRUE(driver.component.setParameter(u"EquipmentType", std::u16string(unknown)));
  }
  const std::optional<std::u16string> id = driver.component.open();
  ASSERT_TRUE(id);
  driver.lines.back().send("scan\r");
  const terminal::Event event = driver.event();
  EXPECT_EQ(event.name, u"Штрихкод");
  EXPECT_EQ(event.data, u"scan");
  driver.ids.push_back(*id);
}

TEST(BadInput, NumbersOfEveryNumericType) {
  SerialDriver driver;
  driver.plugIn(kUsb1);
  for (const std::uint16_t type : {VTYPE_I2, VTYPE_I4, VTYPE_ERROR, VTYPE_UI1}) {
    tVariant port = numberVariant(kUsb1);
    port.vt = type;
    driver.component.setParameter(u"Port", numberVariant(1));
    driver.component.setParameter(u"Port", port);
    const auto id = driver.component.open();
    ASSERT_TRUE(id) << type;
    driver.ids.push_back(*id);
  }
  for (const std::uint16_t type : {VTYPE_R4, VTYPE_R8}) {
    tVariant port = emptyVariant();
    port.doubleValue = 129.9;
    port.vt = type;
    driver.component.setParameter(u"Port", numberVariant(1));
    driver.component.setParameter(u"Port", port);
    const auto id = driver.component.open();
    ASSERT_TRUE(id) << type;
    driver.ids.push_back(*id);
  }
  for (const double number : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 4294967425.0,
                              std::numeric_limits<double>::infinity()}) {
    tVariant port = emptyVariant();
    port.doubleValue = number;
    port.vt = VTYPE_R8;
    driver.component.setParameter(u"Port", port);
    EXPECT_EQ(driver.component.open(), std::nullopt) << number;
  }
}

TEST(BadInput, UnknownParameterNames) {
  SerialDriver driver;
  for (const std::u16string& name :
       {std::u16string(), std::u16string(u"speed"), std::u16string(u"Speed "),
        std::u16string(u"Скорость"), kLong}) {
    EXPECT_FALSE(driver.component.setParameter(name, 19200));
  }
  std::array<tVariant, 2> params = {emptyVariant(), numberVariant(1)};
  for (std::uint16_t type = 0; type < 64; ++type) {
    // A name of the wrong type, and a null name.
    params[0] = hostileUnlessText(type);
    EXPECT_FALSE(driver.component.call(u"SetParameter", params)->boolValue);
    params[0] = emptyVariant();
    params[0].vt = type;
    params[0].wide.length = 5;
    EXPECT_FALSE(driver.component.call(u"SetParameter", params)->boolValue);
  }
  expectWorking(driver);
}

TEST(BadInput, UnknownDeviceIdentifiers) {
  SerialDriver driver;
  EXPECT_FALSE(driver.component.close(u"InputDevice#1"));
  driver.plugIn(kUsb1);
  driver.open(kUsb1);
  for (const std::u16string& id : {std::u16string(), std::u16string(u"InputDevice"),
                                   std::u16string(u"inputdevice#1"), kLong}) {
    EXPECT_FALSE(driver.component.close(id));
  }
  for (std::uint16_t type = 0; type < 64; ++type) {
    tVariant param = hostileUnlessText(type);
    EXPECT_FALSE(driver.component.call(u"Close", {&param, 1})->boolValue);
    param = emptyVariant();
    param.vt = type;
    EXPECT_FALSE(driver.component.call(u"Close", {&param, 1})->boolValue);
  }
  EXPECT_TRUE(driver.close(u"InputDevice#1"));
}

TEST(BadInput, UnknownMethodNumbers) {
  SerialDriver driver;
  IComponentBase& object = driver.component.object();
  std::array<tVariant, 8> params;
  params.fill(emptyVariant());
  tVariant result = emptyVariant();
  for (const long number : {-1L, 10L, 11L, kSmallest, kLargest, std::numeric_limits<long>::min(),
                            std::numeric_limits<long>::max()}) {
    EXPECT_FALSE(object.CallAsFunc(number, &result, params.data(), 8)) << number;
    EXPECT_FALSE(object.CallAsProc(number, params.data(), 8)) << number;
    EXPECT_EQ(object.GetNParams(number), 0) << number;
    EXPECT_EQ(object.GetMethodName(number, 0), nullptr) << number;
    EXPECT_EQ(object.GetMethodName(number, 1), nullptr) << number;
    EXPECT_EQ(object.GetMethodName(0, number), nullptr) << number;
    EXPECT_TRUE(object.HasRetVal(number)) << number;
    EXPECT_EQ(object.GetPropName(number, 0), nullptr) << number;
    EXPECT_FALSE(object.GetPropVal(number, &result)) << number;
    EXPECT_FALSE(object.SetPropVal(number, &result)) << number;
    EXPECT_FALSE(object.IsPropReadable(number) || object.IsPropWritable(number)) << number;
    result.vt = VTYPE_I4;
    EXPECT_FALSE(object.GetParamDefValue(number, number, &result)) << number;
    EXPECT_EQ(result.vt, VTYPE_EMPTY) << number;
  }
  EXPECT_EQ(driver.component.memory().blocksOut(), 0);
}

TEST(BadInput, NullPointersForArgumentsAndResults) {
  SerialDriver driver;
  IComponentBase& object = driver.component.object();
  tVariant result = emptyVariant();
  for (long number = 0; number < object.GetNMethods(); ++number) {
    EXPECT_FALSE(object.CallAsFunc(number, nullptr, nullptr, 0)) << number;
    if (object.GetNParams(number) == 0) continue;
    EXPECT_FALSE(object.CallAsFunc(number, &result, nullptr, 0)) << number;
  }
  EXPECT_EQ(object.FindMethod(nullptr), -1);
  EXPECT_EQ(object.FindMethod(u""), -1);
  EXPECT_EQ(object.FindMethod(u"open"), -1);
  EXPECT_EQ(object.FindMethod(kLong.c_str()), -1);
  EXPECT_EQ(object.FindProp(nullptr), -1);
  EXPECT_FALSE(object.RegisterExtensionAs(nullptr));
  EXPECT_FALSE(object.GetParamDefValue(4, 0, nullptr));
  object.SetLocale(nullptr);
  object.SetLocale(u"");
  object.SetLocale(kLong.c_str());
  expectWorking(driver);
}

TEST(BadInput, UnknownClassNames) {
  const terminal::ComponentLibrary library(rig::libraryPath());
  for (const char16_t* const name :
       {u"", u"inputdevice", u"InputDevice ", u"InputDevice|CardReaderDevice", kLong.c_str(),
        static_cast<const char16_t*>(nullptr)}) {
    IComponentBase* object = nullptr;
    EXPECT_EQ(library.GetClassObject(name, &object), 0);
    EXPECT_EQ(object, nullptr);
  }
  EXPECT_EQ(library.GetClassObject(u"InputDevice", nullptr), 0);
  EXPECT_EQ(library.DestroyObject(nullptr), -1);
  IComponentBase* none = nullptr;
  EXPECT_EQ(library.DestroyObject(&none), -1);
  EXPECT_EQ(library.SetPlatformCapabilities(-1), 1);
  EXPECT_EQ(library.GetClassNames(), library.GetClassNames());
}

// A component as GetClassObject creates it: without a memory manager and without a connection.
class BareComponent {
 public:
  explicit BareComponent(const terminal::ComponentLibrary& library) : library_(library) {
    library_.GetClassObject(u"InputDevice", &object_);
  }
  ~BareComponent() { EXPECT_EQ(library_.DestroyObject(&object_), 0); }
  BareComponent(const BareComponent&) = delete;
  BareComponent& operator=(const BareComponent&) = delete;

  IComponentBase* operator->() const { return object_; }

  // Calls a method with empty arguments and returns whether the call and its result are true.
  bool call(const char16_t* method, std::array<tVariant, 7>& params) const {
    params.fill(emptyVariant());
    tVariant result = emptyVariant();
    const long number = object_->FindMethod(method);
    return object_->CallAsFunc(number, &result, params.data(), object_->GetNParams(number)) &&
           (result.vt != VTYPE_BOOL || result.boolValue);
  }

 private:
  const terminal::ComponentLibrary& library_;
  IComponentBase* object_ = nullptr;
};

TEST(BadInput, AComponentBeforeInit) {
  const terminal::ComponentLibrary library(rig::libraryPath());
  const BareComponent component(library);
  std::array<tVariant, 7> params;
  for (const char16_t* method : {u"GetParameters", u"SetParameter", u"Open", u"Close"}) {
    EXPECT_FALSE(component.call(method, params)) << component->FindMethod(method);
  }
  EXPECT_TRUE(component.call(u"GetLastError", params));
  EXPECT_FALSE(component->Init(nullptr));
  EXPECT_FALSE(component->setMemManager(nullptr));
  EXPECT_FALSE(component.call(u"GetVersion", params));
  EXPECT_TRUE(component.call(u"GetDescription", params));
  EXPECT_FALSE(component.call(u"Open", params));
  component->Done();
}

// A memory manager that is out of memory; its result and its pointer may contradict each other.
struct NoMemory : IMemoryManager {
  NoMemory(bool reportsSuccess, bool leavesPointer)
      : reportsSuccess_(reportsSuccess), leavesPointer_(leavesPointer) {}
  bool AllocMemory(void** block, unsigned long) override {
    *block = leavesPointer_ ? scrap_ : nullptr;
    return reportsSuccess_;
  }
  void FreeMemory(void** block) override { *block = nullptr; }

 private:
  const bool reportsSuccess_;
  const bool leavesPointer_;
  char scrap_[1] = {};
};

void expectNoTexts(IMemoryManager* memory) {
  SerialDriver driver;
  IComponentBase& object = driver.component.object();
  EXPECT_EQ(object.setMemManager(memory), memory != nullptr);
  WCHAR_T* name = nullptr;
  EXPECT_FALSE(object.RegisterExtensionAs(&name));
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(object.GetMethodName(5, 1), nullptr);
  EXPECT_EQ(driver.component.call(u"GetVersion"), std::nullopt);
  std::array<tVariant, 7> params;
  for (const char16_t* const method :
       {u"GetDescription", u"GetLastError", u"GetAdditionalActions"}) {
    params.fill(emptyVariant());
    EXPECT_TRUE(driver.component.call(method, params));
    EXPECT_EQ(params[0].vt, VTYPE_PWSTR);
    EXPECT_EQ(params[0].wide.text, nullptr);
  }
  // The device opens although its identifier cannot be handed over.
  SerialLine& line = driver.plugIn(kUsb1);
  driver.component.setParameter(u"Port", kUsb1);
  params.fill(emptyVariant());
  EXPECT_TRUE(driver.component.call(u"Open", params)->boolValue);
  EXPECT_EQ(params[0].wide.text, nullptr);
  line.send("scan\r");
  EXPECT_EQ(driver.event().data, u"scan");
  EXPECT_TRUE(driver.close(u"InputDevice#1"));
}

TEST(BadInput, AHostWithoutAMemoryManager) { expectNoTexts(nullptr); }

TEST(BadInput, AMemoryManagerThatFails) {
  NoMemory memory(false, false);
  expectNoTexts(&memory);
}

TEST(BadInput, AMemoryManagerThatFailsAndLeavesAPointer) {
  NoMemory memory(false, true);
  expectNoTexts(&memory);
}

TEST(BadInput, AMemoryManagerThatSucceedsWithoutMemory) {
  NoMemory memory(true, false);
  expectNoTexts(&memory);
}

TEST(BadInput, AHostThatTakesNoEvents) {
  struct Deaf : terminal::HostConnection {
    using HostConnection::HostConnection;
    bool SetEventBufferDepth(long) override { return false; }
    bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override {
      HostConnection::ExternalEvent(source, message, data);
      return false;
    }
  };
  terminal::EventQueue events;
  Deaf connection(events);
  SerialDriver driver;
  // Init passes the refusal on, but the component works.
  EXPECT_FALSE(driver.component.object().Init(&connection));
  SerialLine& line = driver.plugIn(kUsb1);
  driver.open(kUsb1);
  line.send("1\r2\r");
  EXPECT_EQ(events.take(rig::kPatience)->data, u"1");
  EXPECT_EQ(events.take(rig::kPatience)->data, u"2");
}

}  // namespace
