// The performer of desktop systems: parameters, and the registry of open devices.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "devices/InputDeviceFactories.h"
#include "performer/Equipment.h"
#include "performer/QuorvelPerformerBase.h"
#include "util/OutputData.h"

namespace quorvel {

class QuorvelPerformerDesktop : public QuorvelPerformerBase {
 public:
  // `connection` is the host's and outlives the performer. The copy of `callback` lives until the
  // last device is closed.
  QuorvelPerformerDesktop(IAddInDefBaseEx* connection, const InputCallback& callback);

  bool OpenDevice(const std::wstring& deviceId) override;
  bool CloseDevice(const std::wstring& deviceId) override;
  bool TestDevice(const std::wstring& deviceId) override;
  std::wstring GetLastError(bool russian) override;
  tVariant SetParameter(const wchar_t* name, const tVariant& value) override;
  tVariant GetParameter(const wchar_t* name) override;

 protected:
  // Sets a parameter. Returns false and changes nothing when it refuses the value.
  using Setter = std::function<bool(const tVariant& value)>;

  struct Settings {
    unsigned equipmentType = kBarcodeScanner;
    unsigned outputDataType = kText;
    std::unordered_map<std::wstring, Setter> setters;
  };

  InputDeviceKeyboardFactory keyboardFactory_;
  InputDeviceComPortFactory comPortFactory_;
  std::map<std::wstring, std::shared_ptr<InputDevice>> devices_;  // open devices by identifier
  std::wstring dataKind_;       // what the equipment reads, in the language it was set in
  std::wstring equipmentText_;  // the last value of EquipmentType
  std::unique_ptr<Settings> settings_;

 private:
  void setDefaults();
  void registerSetters();
  bool setEquipmentType(const tVariant& value);
};

}  // namespace quorvel
