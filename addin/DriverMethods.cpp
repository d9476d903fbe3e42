// The driver methods of QuorvelNative: their table and their handlers.
#include <QuorvelVersion.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "addin/QuorvelNative.h"
#include "performer/AppSettings.h"
#include "performer/ErrorText.h"
#include "util/Language.h"
#include "util/Variants.h"

namespace quorvel {
namespace {

constexpr const wchar_t* kIdSeparator = L"#";
constexpr const wchar_t* kDownloadAddress = L"https://support.ostrak.example/input-devices";

constexpr Bilingual kDriverName = {L"Ostrak: Драйвер устройств ввода",
                                   L"Ostrak: Input device driver"};
constexpr Bilingual kDriverDescription = {L"Драйвер для подключения устройств ввода",
                                          L"Driver for input devices"};

// The only code of GetLastError.
constexpr std::int32_t kErrorCode = 1;

}  // namespace

const std::array<QuorvelNative::Method, 10> QuorvelNative::kMethods = {{
    {{L"ПолучитьНомерВерсии", L"GetVersion"}, 0, &QuorvelNative::MethGetVersion},
    {{L"ПолучитьОписание", L"GetDescription"}, 7, &QuorvelNative::MethGetDescription},
    {{L"ПолучитьОшибку", L"GetLastError"}, 1, &QuorvelNative::MethGetLastError},
    {{L"ПолучитьПараметры", L"GetParameters"}, 1, &QuorvelNative::MethGetParameters},
    {{L"УстановитьПараметр", L"SetParameter"}, 2, &QuorvelNative::MethSetParameter},
    {{L"Подключить", L"Open"}, 1, &QuorvelNative::MethOpen},
    {{L"Отключить", L"Close"}, 1, &QuorvelNative::MethClose},
    {{L"ТестУстройства", L"DeviceTest"}, 2, &QuorvelNative::MethDeviceTest},
    {{L"ПолучитьДополнительныеДействия", L"GetAdditionalActions"},
     1,
     &QuorvelNative::MethGetAdditionalActions},
    {{L"ВыполнитьДополнительноеДействие", L"DoAdditionalAction"},
     1,
     &QuorvelNative::MethDoAdditionalAction},
}};

const QuorvelNative::Method* QuorvelNative::methodOf(long number) {
  if (number < 0 || number >= static_cast<long>(kMethods.size())) return nullptr;
  return &kMethods[static_cast<std::size_t>(number)];
}

long QuorvelNative::findMethod(std::wstring_view name) {
  const auto* const method =
      std::find_if(kMethods.begin(), kMethods.end(), [name](const Method& candidate) {
        return name == candidate.name.english || name == candidate.name.russian;
      });
  return method == kMethods.end() ? -1 : static_cast<long>(method - kMethods.begin());
}

bool QuorvelNative::MethGetVersion(tVariant& result, tVariant*) {
  result = AllocAndConvertVariant(kWideVersion);
  return result.wide.text != nullptr;
}

bool QuorvelNative::MethGetDescription(tVariant& result, tVariant* params) {
  const Language language = languageOf(russian_);
  params[0] = AllocAndConvertVariant(kDriverName.in(language));
  params[1] = AllocAndConvertVariant(kDriverDescription.in(language));
  params[2] = AllocAndConvertVariant(equipmentType_.c_str());
  setInt(params[3], kInterfaceRevision);
  setBool(params[4], false);  // is an integration component
  setBool(params[5], true);   // has its main driver installed
  params[6] = AllocAndConvertVariant(kDownloadAddress);
  setBool(result, true);
  return true;
}

bool QuorvelNative::MethGetLastError(tVariant& result, tVariant* params) {
  const Language language = AppSettings::language();
  const std::wstring text = performer_ ? performer_->GetLastError(language == Language::kRussian)
                                       : kConnectionError.in(language);
  params[0] = AllocAndConvertVariant(text.c_str());
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
  // Counts failed attempts too, so that no identifier is ever reused.
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
