// The performer of desktop systems: parameters, and the registry of open devices.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "devices/InputDeviceFactories.h"
#include "performer/AppSettings.h"
#include "performer/QuorvelPerformerBase.h"

namespace quorvel {

class QuorvelPerformerDesktop : public QuorvelPerformerBase {
 public:
  // `connection` is the host's; `callback` is copied, and lives until the last device is closed.
  QuorvelPerformerDesktop(IAddInDefBaseEx* connection, const InputCallback& callback);

  bool OpenDevice(const std::wstring& deviceId) override;
  bool CloseDevice(const std::wstring& deviceId) override;
  bool TestDevice(const std::wstring& deviceId) override;
  std::wstring GetLastError(bool russian) override;
  tVariant SetParameter(const wchar_t* name, const tVariant& value) override;
  tVariant GetParameter(const wchar_t* name) override;

 protected:
  // Sets a parameter; false when it refuses the value, and then nothing has changed.
  using Setter = std::function<bool(const tVariant& value)>;

  struct Settings {
    unsigned equipmentType = kBarcodeScanner;
    unsigned outputDataType = kText;
    std::unordered_map<std::wstring, Setter> setters;
  };

  InputDeviceKeyboardFactory keyboardFactory_;
  InputDeviceComPortFactory comPortFactory_;
  std::map<std::wstring, std::shared_ptr<InputDevice>> devices_;  // the open ones, by identifier
  std::wstring dataKind_;       // the display name of what the equipment reads
  std::wstring equipmentText_;  // the last equipment type given
  std::unique_ptr<Settings> settings_;

 private:
  void setDefaults();
  void registerSetters();
  bool setEquipmentType(const tVariant& value);
};

}  // namespace quorvel
