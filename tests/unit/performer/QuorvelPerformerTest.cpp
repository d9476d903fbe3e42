// The performer's device registry and error text.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/rig/Environment.h"
#include "tests/rig/HostCodes.h"
#include "tests/rig/HostDoubles.h"
#include "tests/rig/Variants.h"
#include "tests/rig/VirtualSlots.h"
#include "tests/unit/performer/OpenPerformer.h"
#include "tests/unit/performer/RestoredSettings.h"

namespace quorvel {
namespace {

using rig::numberVariant;
using test::OpenPerformer;

// A device that reports its destruction.
class FakeDevice : public InputDevice {
 public:
  FakeDevice(std::wstring id, std::vector<std::wstring>& ended)
      : InputDevice([](const std::wstring&) {}), id_(std::move(id)), ended_(ended) {}
  ~FakeDevice() override { ended_.push_back(id_); }

 private:
  std::wstring id_;
  std::vector<std::wstring>& ended_;
};

class PerformerTest : public test::RestoredSettings {
 protected:
  void addDevice(OpenPerformer& performer, const std::wstring& id) {
    performer.devices_[id] = std::make_shared<FakeDevice>(id, ended_);
  }

  std::vector<std::wstring> ended_;  // destroyed devices in order
};

TEST_F(PerformerTest, OperationsHaveTheirSlots) {
  EXPECT_EQ(rig::slotOf(&QuorvelPerformerBase::OpenDevice), 2u);
  EXPECT_EQ(rig::slotOf(&QuorvelPerformerBase::CloseDevice), 3u);
  EXPECT_EQ(rig::slotOf(&QuorvelPerformerBase::TestDevice), 4u);
  EXPECT_EQ(rig::slotOf(&QuorvelPerformerBase::GetLastError), 5u);
  EXPECT_EQ(rig::slotOf(&QuorvelPerformerBase::GetParameters), 6u);
  EXPECT_EQ(rig::slotOf(&QuorvelPerformerBase::SetParameter), 7u);
  EXPECT_EQ(rig::slotOf(&QuorvelPerformerBase::GetParameter), 8u);
}

TEST_F(PerformerTest, KeepsTheConnectionAndACopyOfTheCallback) {
  class Connected : public QuorvelPerformerLinux {
   public:
    using QuorvelPerformerLinux::callback_;
    using QuorvelPerformerLinux::connection_;
    using QuorvelPerformerLinux::QuorvelPerformerLinux;
  };
  rig::FakeConnection connection;
  const auto kept = std::make_shared<int>(0);
  {
    InputCallback callback = [kept](const std::wstring&, int, int, const std::wstring&) {};
    const Connected performer(&connection, callback);
    callback = nullptr;
    EXPECT_EQ(performer.connection_, &connection);
    EXPECT_TRUE(performer.callback_);
    EXPECT_EQ(kept.use_count(), 2);
  }
  EXPECT_EQ(kept.use_count(), 1);
  EXPECT_EQ(connection.reservedCalls, 0);
}

TEST_F(PerformerTest, HasOneErrorTextInTwoLanguages) {
  OpenPerformer performer;
  for (const unsigned locale : {rig::kRussianLocale, rig::kEnglishLocale}) {
    AppSettings::setLocale(locale);
    EXPECT_EQ(performer.GetLastError(true),
              L"Ошибка подключения. Проверьте доступность устройства.");
    EXPECT_EQ(performer.GetLastError(false), L"Connection error. Check device availability.");
  }
}

TEST_F(PerformerTest, ClosingAnUnknownIdentifierFails) {
  OpenPerformer performer;
  EXPECT_FALSE(performer.CloseDevice(L"InputDevice#1"));
  EXPECT_FALSE(performer.CloseDevice(L""));
  EXPECT_FALSE(performer.CloseDevice(std::wstring(10000, L'x')));
  addDevice(performer, L"InputDevice#1");
  EXPECT_FALSE(performer.CloseDevice(L"InputDevice#2"));
  EXPECT_FALSE(performer.CloseDevice(L"inputdevice#1"));
  EXPECT_FALSE(performer.CloseDevice(L"InputDevice#"));
  EXPECT_FALSE(performer.CloseDevice(L"InputDevice#11"));
  EXPECT_TRUE(ended_.empty());
}

TEST_F(PerformerTest, ClosingDestroysThatDeviceOnly) {
  OpenPerformer performer;
  addDevice(performer, L"A");
  addDevice(performer, L"B");
  EXPECT_TRUE(performer.CloseDevice(L"A"));
  EXPECT_EQ(ended_, std::vector<std::wstring>{L"A"});
  EXPECT_EQ(performer.devices_.size(), 1u);
  EXPECT_FALSE(performer.CloseDevice(L"A"));
  EXPECT_TRUE(performer.CloseDevice(L"B"));
  EXPECT_EQ(ended_, (std::vector<std::wstring>{L"A", L"B"}));
}

TEST_F(PerformerTest, ClosingOnlyReleasesASharedDevice) {
  OpenPerformer performer;
  addDevice(performer, L"A");
  std::shared_ptr<InputDevice> held = performer.devices_.at(L"A");
  EXPECT_TRUE(performer.CloseDevice(L"A"));
  EXPECT_TRUE(ended_.empty());
  held.reset();
  EXPECT_EQ(ended_.size(), 1u);
}

TEST_F(PerformerTest, DevicesAreSortedByIdentifier) {
  OpenPerformer performer;
  for (const wchar_t* const id : {L"b", L"B", L"a#2", L"a#10", L"a", L""}) {
    addDevice(performer, id);
  }
  std::vector<std::wstring> ids;
  for (const auto& [id, device] : performer.devices_) ids.push_back(id);
  EXPECT_EQ(ids, (std::vector<std::wstring>{L"", L"B", L"a", L"a#10", L"a#2", L"b"}));
}

TEST_F(PerformerTest, DevicesAreDestroyedBeforeTheCallbackTheyUse) {
  const auto callbackAlive = std::make_shared<int>(0);
  const std::weak_ptr<int> callback = callbackAlive;
  struct Witness : InputDevice {
    Witness(std::weak_ptr<int> watched, bool& aliveAtEnd)
        : InputDevice([](const std::wstring&) {}),
          watched_(std::move(watched)),
          aliveAtEnd_(aliveAtEnd) {}
    ~Witness() override { aliveAtEnd_ = watched_.use_count() > 1; }
    std::weak_ptr<int> watched_;
    bool& aliveAtEnd_;
  };
  bool aliveAtEnd = false;
  {
    OpenPerformer performer([callbackAlive](const std::wstring&, int, int, const std::wstring&) {});
    performer.devices_[L"A"] = std::make_shared<Witness>(callback, aliveAtEnd);
  }
  EXPECT_TRUE(aliveAtEnd);
  EXPECT_EQ(callback.use_count(), 1);
}

TEST_F(PerformerTest, DestroyingThePerformerDestroysEveryDevice) {
  {
    OpenPerformer performer;
    addDevice(performer, L"A");
    addDevice(performer, L"B");
  }
  EXPECT_EQ(ended_.size(), 2u);
}

TEST_F(PerformerTest, OpeningAMissingPortFails) {
  ASSERT_FALSE(std::filesystem::exists("/dev/ttyUSB100000"));
  OpenPerformer performer;
  performer.SetParameter(L"Port", numberVariant(100129));
  EXPECT_FALSE(performer.OpenDevice(L"InputDevice#1"));
  EXPECT_FALSE(performer.OpenDevice(std::wstring(10000, L'x')));
  EXPECT_TRUE(performer.devices_.empty());
  EXPECT_FALSE(performer.CloseDevice(L"InputDevice#1"));
}

TEST_F(PerformerTest, AFailureToOpenKeepsTheDeviceWithThatIdentifier) {
  OpenPerformer performer;
  addDevice(performer, L"A");
  performer.SetParameter(L"Port", numberVariant(100129));
  EXPECT_FALSE(performer.OpenDevice(L"A"));
  EXPECT_TRUE(ended_.empty());
  EXPECT_TRUE(performer.CloseDevice(L"A"));
}

TEST_F(PerformerTest, OpeningAKeyboardWithoutADisplayFails) {
  const rig::ScopedVariable noDisplay("DISPLAY", std::nullopt);
  OpenPerformer performer;
  performer.SetParameter(L"KeyboardDevice", rig::textVariant(u"Scanner"));
  EXPECT_FALSE(performer.OpenDevice(L"A"));
  EXPECT_TRUE(performer.devices_.empty());
}

}  // namespace
}  // namespace quorvel
