// The slot numbers of the host's interfaces.
#include <gtest/gtest.h>

#include <cstddef>

#include "host/IAddInDefBaseEx.h"
#include "host/IComponentBase.h"
#include "host/IMemoryManager.h"
#include "tests/rig/VirtualSlots.h"

namespace {

TEST(Interfaces, InitDoneSlots) {
  EXPECT_EQ(slotOf(&IInitDoneBase::Init), 2u);
  EXPECT_EQ(slotOf(&IInitDoneBase::setMemManager), 3u);
  EXPECT_EQ(slotOf(&IInitDoneBase::GetInfo), 4u);
  EXPECT_EQ(slotOf(&IInitDoneBase::Done), 5u);
}

TEST(Interfaces, LanguageExtenderSlots) {
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::RegisterExtensionAs), 2u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::GetNProps), 3u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::FindProp), 4u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::GetPropName), 5u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::GetPropVal), 6u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::SetPropVal), 7u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::IsPropReadable), 8u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::IsPropWritable), 9u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::GetNMethods), 10u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::FindMethod), 11u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::GetMethodName), 12u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::GetNParams), 13u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::GetParamDefValue), 14u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::HasRetVal), 15u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::CallAsProc), 16u);
  EXPECT_EQ(slotOf(&ILanguageExtenderBase::CallAsFunc), 17u);
}

TEST(Interfaces, LocaleSlot) { EXPECT_EQ(slotOf(&LocaleBase::SetLocale), 2u); }

TEST(Interfaces, MemoryManagerSlots) {
  EXPECT_EQ(slotOf(&IMemoryManager::AllocMemory), 2u);
  EXPECT_EQ(slotOf(&IMemoryManager::FreeMemory), 3u);
}

TEST(Interfaces, ConnectionSlots) {
  EXPECT_EQ(slotOf(&IAddInDefBaseEx::SetEventBufferDepth), 6u);
  EXPECT_EQ(slotOf(&IAddInDefBaseEx::ExternalEvent), 8u);
}

// The bases stand one after another, each with a table of its own.
TEST(Interfaces, ComponentBasesInOrder) {
  alignas(IComponentBase) std::byte storage[sizeof(IComponentBase)];
  auto* const component = reinterpret_cast<IComponentBase*>(storage);
  const auto offsetOf = [&](void* base) { return static_cast<std::byte*>(base) - storage; };
  const auto word = static_cast<std::ptrdiff_t>(sizeof(void*));
  EXPECT_EQ(offsetOf(static_cast<IInitDoneBase*>(component)), 0);
  EXPECT_EQ(offsetOf(static_cast<ILanguageExtenderBase*>(component)), word);
  EXPECT_EQ(offsetOf(static_cast<LocaleBase*>(component)), 2 * word);
}

}  // namespace
