#include <gtest/gtest.h>

#include <string>

#include "devices/InputDeviceFactories.h"
#include "tests/rig/VirtualSlots.h"

namespace quorvel {
namespace {

TEST(InputDeviceFactory, CreateIsInTheSlotAfterTheDestructor) {
  EXPECT_EQ(rig::slotOf(&InputDeviceFactory::create), 2u);
}

TEST(InputDeviceComPortFactory, HasItsDefaults) {
  const InputDeviceComPortFactory factory;
  EXPECT_EQ(factory.port, 1u);
  EXPECT_EQ(factory.speed, 9600u);
  EXPECT_EQ(factory.dataBits, 8u);
  EXPECT_EQ(factory.stopBit, 0u);
  EXPECT_EQ(factory.suffix, L"\r");
  EXPECT_EQ(factory.timeoutCOM, 5);
  EXPECT_EQ(factory.comEncoding, L"");
}

TEST(InputDeviceKeyboardFactory, HasItsDefaults) {
  const InputDeviceKeyboardFactory factory;
  EXPECT_EQ(factory.port, 0u);
  EXPECT_EQ(factory.suffix, L"");
  EXPECT_EQ(factory.prefix, L"");
  EXPECT_EQ(factory.timeout, 75);
  EXPECT_EQ(factory.gsSymbolKey, NonPrintableKeys::kNoKey);
  EXPECT_FALSE(factory.listenOnly);
  EXPECT_FALSE(factory.spareFlag1);
  EXPECT_EQ(factory.keyboardDevice, L"");
  EXPECT_FALSE(factory.spareFlag2);
  EXPECT_TRUE(factory.ignoreKeyboardState);
}

TEST(InputDeviceComPortFactory, ACopyIsIndependent) {
  InputDeviceComPortFactory factory;
  factory.port = 129;
  factory.comEncoding = L"Windows-1251";
  InputDeviceComPortFactory copy = factory;
  EXPECT_EQ(copy.port, 129u);
  EXPECT_EQ(copy.comEncoding, L"Windows-1251");
  copy.port = 2;
  copy.suffix.clear();
  copy.comEncoding = L"UTF-8";
  EXPECT_EQ(factory.port, 129u);
  EXPECT_EQ(factory.suffix, L"\r");
  EXPECT_EQ(factory.comEncoding, L"Windows-1251");
}

TEST(InputDeviceKeyboardFactory, ACopyIsIndependent) {
  InputDeviceKeyboardFactory factory;
  factory.keyboardDevice = L"Scanner";
  factory.gsSymbolKey = NonPrintableKeys::kF8;
  factory.spareFlag2 = true;
  InputDeviceKeyboardFactory copy = factory;
  EXPECT_EQ(copy.keyboardDevice, L"Scanner");
  EXPECT_EQ(copy.gsSymbolKey, NonPrintableKeys::kF8);
  EXPECT_TRUE(copy.spareFlag2);
  copy.listenOnly = true;
  copy.keyboardDevice = L"Other";
  EXPECT_FALSE(factory.listenOnly);
  EXPECT_EQ(factory.keyboardDevice, L"Scanner");
}

}  // namespace
}  // namespace quorvel
