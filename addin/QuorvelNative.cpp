#include "addin/QuorvelNative.h"

#include <cwchar>
#include <optional>

#include "addin/EventNames.h"
#include "performer/AppSettings.h"
#include "performer/Equipment.h"
#include "performer/QuorvelPerformerLinux.h"
#include "util/OutputData.h"
#include "util/ScopedWipe.h"
#include "util/Text.h"
#include "util/Variants.h"
#include "util/WideStrings.h"

namespace quorvel {
namespace {

constexpr long kEventBufferDepth = 4096;

// The host numbers the languages of method names in another order than locales.
std::optional<Language> languageOfMethodName(long number) {
  switch (number) {
    case 0:
      return Language::kEnglish;
    case 1:
      return Language::kRussian;
    default:
      return std::nullopt;
  }
}

// Cuts characters to 16 bits, as convToShortWchar does.
std::u16string hostText(const wchar_t* text) {
  return std::u16string(text, text + std::wcslen(text));
}

// Runs an operation that the host has called and turns an exception into its failure result.
template <typename Result, typename Operation>
Result guarded(Result failure, Operation operation) noexcept {
  try {
    return operation();
  } catch (...) {
    return failure;
  }
}

}  // namespace

QuorvelNative::QuorvelNative(const wchar_t* extensionName, const wchar_t* dataName)
    : dataName_(dataName),
      extensionName_(extensionName),
      equipmentType_(kBarcodeScannerName),
      russian_(AppSettings::language() == Language::kRussian) {}

bool QuorvelNative::Init(void* connection) {
  return guarded(false, [&] {
    auto* const host = static_cast<IAddInDefBaseEx*>(connection);
    connection_ = host;
    if (!host) return false;
    performer_ = std::make_unique<QuorvelPerformerLinux>(
        host,
        [this](const std::wstring& deviceId, int equipmentType, int dataType,
               const std::wstring& data) { OnInput(deviceId, equipmentType, dataType, data); });
    return host->SetEventBufferDepth(kEventBufferDepth);
  });
}

bool QuorvelNative::setMemManager(void* memoryManager) {
  memoryManager_ = static_cast<IMemoryManager*>(memoryManager);
  return memoryManager_ != nullptr;
}

long QuorvelNative::GetInfo() { return kInterfaceRevision; }

void QuorvelNative::Done() {}

bool QuorvelNative::RegisterExtensionAs(WCHAR_T** name) {
  if (!name) return false;
  *name = AllocAndConvert(extensionName_.c_str());
  return *name != nullptr;
}

long QuorvelNative::GetNProps() { return 0; }

long QuorvelNative::FindProp(const WCHAR_T*) { return -1; }

const WCHAR_T* QuorvelNative::GetPropName(long, long) { return nullptr; }

bool QuorvelNative::GetPropVal(long, tVariant*) { return false; }

bool QuorvelNative::SetPropVal(long, tVariant*) { return false; }

bool QuorvelNative::IsPropReadable(long) { return false; }

bool QuorvelNative::IsPropWritable(long) { return false; }

long QuorvelNative::GetNMethods() { return static_cast<long>(kMethods.size()); }

long QuorvelNative::FindMethod(const WCHAR_T* name) {
  return guarded(-1L, [&] { return findMethod(convFromShortWchar(name)); });
}

const WCHAR_T* QuorvelNative::GetMethodName(long num, long lang) {
  const Method* const method = methodOf(num);
  const std::optional<Language> language = languageOfMethodName(lang);
  if (!method || !language) return nullptr;
  return AllocAndConvert(method->name.in(*language));
}

long QuorvelNative::GetNParams(long num) {
  const Method* const method = methodOf(num);
  return method ? method->parameters : 0;
}

bool QuorvelNative::GetParamDefValue(long, long, tVariant* value) {
  if (value) value->vt = VTYPE_EMPTY;
  return false;
}

bool QuorvelNative::HasRetVal(long) { return true; }

bool QuorvelNative::CallAsProc(long, tVariant*, long) { return false; }

bool QuorvelNative::CallAsFunc(long num, tVariant* ret, tVariant* params, long) {
  const Method* const method = methodOf(num);
  if (!method || !ret || (!params && method->parameters > 0)) return false;
  return guarded(false, [&] { return (this->*method->handler)(*ret, params); });
}

void QuorvelNative::SetLocale(const WCHAR_T* locale) {
  guarded(false, [&] {
    const std::wstring name = str_tolower(convFromShortWchar(locale));
    // Covers "rus" as well.
    if (name.find(L"ru") != name.npos) russian_ = true;
    AppSettings::setLanguage(languageOf(russian_));
    return true;
  });
}

void QuorvelNative::OnInput(const std::wstring& source, int equipmentType, int dataType,
                            const std::wstring& data) {
  IAddInDefBaseEx* const connection = connection_;
  if (!connection) return;
  const auto equipmentCode = static_cast<unsigned>(equipmentType);
  const auto dataCode = static_cast<unsigned>(dataType);
  std::wstring output = outputData(data, dataCode);
  const ScopedWipe wipeOutput(output);
  std::u16string eventSource = hostText(source.c_str());
  std::u16string eventName =
      hostText(eventNameOf(equipmentCode, dataCode, AppSettings::language()));
  std::u16string eventData = hostText(output.c_str());
  const ScopedWipe wipeData(eventData);
  connection->ExternalEvent(eventSource.data(), eventName.data(), eventData.data());
}

WCHAR_T* QuorvelNative::AllocAndConvert(const wchar_t* text) const {
  return guarded<WCHAR_T*>(nullptr, [&] { return quorvel::AllocAndConvert(memoryManager_, text); });
}

tVariant QuorvelNative::AllocAndConvertVariant(const wchar_t* text) const {
  return quorvel::AllocAndConvertVariant(memoryManager_, text);
}

}  // namespace quorvel
