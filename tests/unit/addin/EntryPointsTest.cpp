// The exported functions, declared as a host declares them.
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <memory>
#include <string>

#include "host/IComponentBase.h"
#include "tests/rig/HostDoubles.h"
#include "tests/unit/performer/RestoredSettings.h"

extern "C" {
const WCHAR_T* GetClassNames();
long GetClassObject(const WCHAR_T* name, IComponentBase** slot);
long DestroyObject(IComponentBase** slot);
long SetPlatformCapabilities(int capabilities);
}

namespace quorvel {
namespace {

using EntryPoints = test::RestoredSettings;

std::u16string registeredName(IComponentBase& component) {
  rig::FakeMemoryManager memory;
  component.setMemManager(&memory);
  WCHAR_T* name = nullptr;
  EXPECT_TRUE(component.RegisterExtensionAs(&name));
  return name;
}

TEST_F(EntryPoints, GetClassNamesAlwaysReturnsTheSamePointer) {
  const WCHAR_T* const names = GetClassNames();
  EXPECT_EQ(std::u16string(names), u"InputDevice|CardReaderDevice");
  EXPECT_EQ(GetClassNames(), names);
}

TEST_F(EntryPoints, CreateAComponentOfEachClass) {
  for (const char16_t* const name : {u"InputDevice", u"CardReaderDevice"}) {
    IComponentBase* component = nullptr;
    const long result = GetClassObject(name, &component);
    ASSERT_NE(component, nullptr);
    EXPECT_EQ(result, reinterpret_cast<long>(component));
    EXPECT_EQ(registeredName(*component), name);
    EXPECT_EQ(DestroyObject(&component), 0);
    EXPECT_EQ(component, nullptr);
  }
}

TEST_F(EntryPoints, CreateNothingForAnUnknownClass) {
  const std::u16string longName(10000, u'x');
  const WCHAR_T* const noName = nullptr;
  for (const WCHAR_T* const name :
       {u"", u"inputdevice", u"InputDevice ", u" InputDevice", u"InputDevic", u"InputDevices",
        u"InputDevice|CardReaderDevice", u"Устройство", longName.c_str(), noName}) {
    IComponentBase* component = nullptr;
    EXPECT_EQ(GetClassObject(name, &component), 0);
    EXPECT_EQ(component, nullptr);
  }
}

TEST_F(EntryPoints, KeepAnObjectThatIsAlreadyThere) {
  IComponentBase* component = nullptr;
  GetClassObject(u"InputDevice", &component);
  IComponentBase* const before = component;
  for (const char16_t* const name : {u"InputDevice", u"CardReaderDevice", u"unknown"}) {
    EXPECT_EQ(GetClassObject(name, &component), reinterpret_cast<long>(before));
    EXPECT_EQ(component, before);
  }
  DestroyObject(&component);
}

TEST_F(EntryPoints, ComponentsAreIndependent) {
  IComponentBase* first = nullptr;
  IComponentBase* second = nullptr;
  GetClassObject(u"InputDevice", &first);
  GetClassObject(u"InputDevice", &second);
  EXPECT_NE(first, second);
  DestroyObject(&first);
  EXPECT_EQ(registeredName(*second), u"InputDevice");
  DestroyObject(&second);
}

TEST_F(EntryPoints, DestroyingTwiceFails) {
  IComponentBase* component = nullptr;
  EXPECT_EQ(DestroyObject(&component), -1);
  GetClassObject(u"InputDevice", &component);
  EXPECT_EQ(DestroyObject(&component), 0);
  EXPECT_EQ(DestroyObject(&component), -1);
}

TEST_F(EntryPoints, ANullSlotIsAFailure) {
  EXPECT_EQ(GetClassObject(u"InputDevice", nullptr), 0);
  EXPECT_EQ(GetClassObject(nullptr, nullptr), 0);
  EXPECT_EQ(DestroyObject(nullptr), -1);
}

TEST_F(EntryPoints, AnyPlatformIsAccepted) {
  for (const int capabilities : {0, 1, 2, 3, -1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(SetPlatformCapabilities(capabilities), 1);
  }
}

TEST_F(EntryPoints, CreatingAComponentWritesNoLogFile) {
  const auto logFiles = [] {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
      count += entry.path().filename().string().rfind("Quorvel_", 0) == 0;
    }
    return count;
  };
  const int before = logFiles();
  IComponentBase* component = nullptr;
  GetClassObject(u"InputDevice", &component);
  DestroyObject(&component);
  EXPECT_EQ(logFiles(), before);
}

}  // namespace
}  // namespace quorvel
