// The slot numbers of the host's interfaces.
#include <gtest/gtest.h>

#include <cstddef>

#include "host/IAddInDefBaseEx.h"
#include "host/IComponentBase.h"
#include "host/IMemoryManager.h"
#include "tests/rig/VirtualSlots.h"

namespace {

TEST(Interfaces, InitDoneSlots) {
  EXPECT_EQ(rig::slotOf(&IInitDoneBase::Init), 2u);
  EXPECT_EQ(rig::slotOf(&IInitDoneBase::setMemManager), 3u);
  EXPECT_EQ(rig::slotOf(&IInitDoneBase::GetInfo), 4u);
  EXPECT_EQ(rig::slotOf(&IInitDoneBase::Done), 5u);
}

TEST(Interfaces, LanguageExtenderSlots) {
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::RegisterExtensionAs), 2u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::GetNProps), 3u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::FindProp), 4u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::GetPropName), 5u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::GetPropVal), 6u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::SetPropVal), 7u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::IsPropReadable), 8u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::IsPropWritable), 9u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::GetNMethods), 10u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::FindMethod), 11u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::GetMethodName), 12u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::GetNParams), 13u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::GetParamDefValue), 14u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::HasRetVal), 15u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::CallAsProc), 16u);
  EXPECT_EQ(rig::slotOf(&ILanguageExtenderBase::CallAsFunc), 17u);
}

TEST(Interfaces, LocaleSlot) { EXPECT_EQ(rig::slotOf(&LocaleBase::SetLocale), 2u); }

TEST(Interfaces, MemoryManagerSlots) {
  EXPECT_EQ(rig::slotOf(&IMemoryManager::AllocMemory), 2u);
  EXPECT_EQ(rig::slotOf(&IMemoryManager::FreeMemory), 3u);
}

TEST(Interfaces, ConnectionSlots) {
  EXPECT_EQ(rig::slotOf(&IAddInDefBaseEx::SetEventBufferDepth), 6u);
  EXPECT_EQ(rig::slotOf(&IAddInDefBaseEx::ExternalEvent), 8u);
}

// The bases lie one after another, each with its own table of virtual functions.
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
