#include "performer/QuorvelPerformerDesktop.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "dialog/DevTestDialogLinux.h"
#include "performer/AppSettings.h"
#include "performer/ErrorText.h"
#include "util/CodePages.h"
#include "util/Language.h"
#include "util/Variants.h"

namespace quorvel {
namespace {

// Stores a number in each of `fields`, without checking its range.
template <typename... Fields>
auto numberSetter(Fields&... fields) {
  return [&fields...](const tVariant& value) {
    std::int32_t number;
    if (!convVarToInt(value, number)) return false;
    ((fields = static_cast<Fields>(number)), ...);
    return true;
  };
}

// Stores a character, given by its code, in each of `fields`; -1 empties them.
template <typename... Fields>
auto characterSetter(Fields&... fields) {
  return [&fields...](const tVariant& value) {
    std::int32_t code;
    if (!convVarToInt(value, code)) return false;
    const std::wstring text =
        code == -1 ? std::wstring() : std::wstring(1, static_cast<wchar_t>(code));
    ((fields = text), ...);
    return true;
  };
}

auto textSetter(std::wstring& field) {
  return [&field](const tVariant& value) {
    std::optional<std::wstring> text = textOf(value);
    if (!text) return false;
    field = std::move(*text);
    return true;
  };
}

auto flagSetter(bool& field) {
  return [&field](const tVariant& value) {
    if (value.vt != VTYPE_BOOL) return false;
    // Read as a byte: a host may write any non-zero byte for true.
    field = value.i8 != 0;
    return true;
  };
}

}  // namespace

QuorvelPerformerDesktop::QuorvelPerformerDesktop(IAddInDefBaseEx* connection,
                                                 const InputCallback& callback)
    : QuorvelPerformerBase(connection, callback), settings_(std::make_unique<Settings>()) {
  setDefaults();
  registerSetters();
}

void QuorvelPerformerDesktop::setDefaults() {
  keyboardFactory_.port = 0;
  keyboardFactory_.suffix = L"\r";
  keyboardFactory_.timeout = 25;
  keyboardFactory_.gsSymbolKey = NonPrintableKeys::kF8;
  comPortFactory_.port = 0;
  comPortFactory_.stopBit = 1;
  comPortFactory_.comEncoding = kEncodingUtf8;
}

void QuorvelPerformerDesktop::registerSetters() {
  settings_->setters = {
      {L"Port", numberSetter(keyboardFactory_.port, comPortFactory_.port)},
      {L"KeyboardDevice", textSetter(keyboardFactory_.keyboardDevice)},
      {L"DataBits", numberSetter(comPortFactory_.dataBits)},
      {L"StopBit", numberSetter(comPortFactory_.stopBit)},
      {L"Speed", numberSetter(comPortFactory_.speed)},
      {L"Prefix", characterSetter(keyboardFactory_.prefix)},
      {L"Suffix", characterSetter(keyboardFactory_.suffix, comPortFactory_.suffix)},
      {L"Timeout", numberSetter(keyboardFactory_.timeout)},
      {L"TimeoutCOM", numberSetter(comPortFactory_.timeoutCOM)},
      {L"COMEncoding", textSetter(comPortFactory_.comEncoding)},
      {L"GSSymbolKey", numberSetter(keyboardFactory_.gsSymbolKey)},
      {L"LogFileFolder", [](const tVariant&) { return true; }},
      {L"EquipmentType", [this](const tVariant& value) { return setEquipmentType(value); }},
      {L"OutputDataType", numberSetter(settings_->outputDataType)},
      {L"IgnoreKeyboardState", flagSetter(keyboardFactory_.ignoreKeyboardState)},
  };
}

bool QuorvelPerformerDesktop::setEquipmentType(const tVariant& value) {
  if (value.vt != VTYPE_PWSTR) return false;
  equipmentText_ = convFromShortWchar(value);
  for (const Equipment& equipment : kEquipment) {
    if (equipmentText_ != equipment.name) continue;
    dataKind_ = equipment.dataKind.in(AppSettings::language());
    settings_->equipmentType = equipment.type;
  }
  return true;
}

tVariant QuorvelPerformerDesktop::SetParameter(const wchar_t* name, const tVariant& value) {
  tVariant result = emptyVariant();
  const auto setter = settings_->setters.find(name);
  setBool(result, setter != settings_->setters.end());
  // A refused value still counts as success: the host goes on with the value set before.
  if (result.boolValue) setter->second(value);
  return result;
}

tVariant QuorvelPerformerDesktop::GetParameter(const wchar_t*) { return emptyVariant(); }

std::wstring QuorvelPerformerDesktop::GetLastError(bool russian) {
  return kConnectionError.in(languageOf(russian));
}

bool QuorvelPerformerDesktop::OpenDevice(const std::wstring& deviceId) {
  const bool serial = comPortFactory_.port != 0;
  InputDeviceFactory& factory =
      serial ? static_cast<InputDeviceFactory&>(comPortFactory_) : keyboardFactory_;
  const DataCallback callback =
      [input = callback_, deviceId, equipmentType = static_cast<int>(settings_->equipmentType),
       outputDataType = static_cast<int>(settings_->outputDataType)](const std::wstring& data) {
        input(deviceId, equipmentType, outputDataType, data);
      };
  std::shared_ptr<InputDevice> device = factory.create(callback);
  if (!device) return false;
  devices_.emplace(deviceId, std::move(device));
  return true;
}

bool QuorvelPerformerDesktop::CloseDevice(const std::wstring& deviceId) {
  return devices_.erase(deviceId) != 0;
}

bool QuorvelPerformerDesktop::TestDevice(const std::wstring&) {
  InputDeviceComPortFactory comPortFactory = comPortFactory_;
  comPortFactory.suffix.clear();
  InputDeviceKeyboardFactory keyboardFactory = keyboardFactory_;
  keyboardFactory.listenOnly = true;
  const bool russian = AppSettings::language() == Language::kRussian;
  DevTestDialogLinux dialog(keyboardFactory, comPortFactory, russian,
                            static_cast<int>(AppSettings::ioDataType()));
  dialog.ShowDlg();
  return true;
}

}  // namespace quorvel
