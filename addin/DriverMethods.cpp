// The handlers of the driver methods.
#include <QuorvelVersion.h>

#include "addin/Methods.h"
#include "addin/QuorvelNative.h"
#include "performer/AppSettings.h"
#include "util/Text.h"
#include "util/Variants.h"

namespace quorvel {
namespace {

constexpr const wchar_t* kIdSeparator = L"#";
constexpr const wchar_t* kDownloadAddress = L"https://support.ostrak.example/input-devices";

struct Description {
  const wchar_t* driverName;
  const wchar_t* driverDescription;
};

constexpr Description kRussianDescription = {L"Ostrak: Драйвер устройств ввода",
                                             L"Драйвер для подключения устройств ввода"};
constexpr Description kEnglishDescription = {L"Ostrak: Input device driver",
                                             L"Driver for input devices"};

// GetLastError has no other code: there is one error.
constexpr std::int32_t kErrorCode = 1;

}  // namespace

const QuorvelNative::Handler QuorvelNative::kHandlers[kMethods.size()] = {
    &QuorvelNative::MethGetVersion,
    &QuorvelNative::MethGetDescription,
    &QuorvelNative::MethGetLastError,
    &QuorvelNative::MethGetParameters,
    &QuorvelNative::MethSetParameter,
    &QuorvelNative::MethOpen,
    &QuorvelNative::MethClose,
    &QuorvelNative::MethDeviceTest,
    &QuorvelNative::MethGetAdditionalActions,
    &QuorvelNative::MethDoAdditionalAction,
};

bool QuorvelNative::MethGetVersion(tVariant& result, tVariant*) {
  result = AllocAndConvertVariant(kWideVersion);
  return result.wide.text != nullptr;
}

bool QuorvelNative::MethGetDescription(tVariant& result, tVariant* params) {
  const Description& description = russian_ ? kRussianDescription : kEnglishDescription;
  params[0] = AllocAndConvertVariant(description.driverName);
  params[1] = AllocAndConvertVariant(description.driverDescription);
  params[2] = AllocAndConvertVariant(equipmentType_.c_str());
  setInt(params[3], kInterfaceRevision);
  setBool(params[4], false);  // no integration component
  setBool(params[5], true);   // the main driver is installed
  params[6] = AllocAndConvertVariant(kDownloadAddress);
  setBool(result, true);
  return true;
}

bool QuorvelNative::MethGetLastError(tVariant& result, tVariant* params) {
  if (!performer_) return false;
  const bool russian = AppSettings::locale() == kRussian;
  params[0] = AllocAndConvertVariant(performer_->GetLastError(russian).c_str());
  setInt(result, kErrorCode);
  return true;
}

bool QuorvelNative::MethGetParameters(tVariant& result, tVariant* params) {
  if (!performer_) return false;
  params[0] = AllocAndConvertVariant(performer_->GetParameters().c_str());
  setBool(result, true);
  return true;
}

bool QuorvelNative::MethSetParameter(tVariant& result, tVariant* params) {
  setBool(result, false);
  const auto name = textOf(params[0]);
  if (performer_ && name) result = performer_->SetParameter(name->c_str(), params[1]);
  return true;
}

bool QuorvelNative::MethOpen(tVariant& result, tVariant* params) {
  // Counted whether or not the device opens, so that no identifier is ever used twice.
  const std::wstring id = extensionName_ + kIdSeparator + std::to_wstring(++openCounter_);
  const bool opened = performer_ && performer_->OpenDevice(id);
  setBool(result, opened);
  if (opened) params[0] = AllocAndConvertVariant(id.c_str());
  return true;
}

bool QuorvelNative::MethClose(tVariant& result, tVariant* params) {
  const auto id = textOf(params[0]);
  setBool(result, performer_ && id && performer_->CloseDevice(*id));
  return true;
}

bool QuorvelNative::MethDeviceTest(tVariant& result, tVariant* params) {
  params[0] = AllocAndConvertVariant(L"");
  params[1] = AllocAndConvertVariant(L"");
  if (performer_) performer_->TestDevice({});
  setBool(result, true);
  return true;
}

bool QuorvelNative::MethGetAdditionalActions(tVariant& result, tVariant* params) {
  params[0] = AllocAndConvertVariant(L"");
  setBool(result, true);
  return true;
}

bool QuorvelNative::MethDoAdditionalAction(tVariant&, tVariant*) { return false; }

}  // namespace quorvel
