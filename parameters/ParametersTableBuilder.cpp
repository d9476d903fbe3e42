#include "parameters/ParametersTableBuilder.h"

#include <string>
#include <string_view>

#include "devices/NonPrintableKeys.h"
#include "parameters/SettingsMarkup.h"
#include "util/CodePages.h"
#include "util/SymbolNames.h"
#include "util/Text.h"

namespace quorvel {
namespace {

constexpr unsigned kLastAscii = 127;

// Used for every printable character, since some of them would break the document.
std::wstring characterReference(unsigned code) {
  constexpr std::wstring_view kDigits = L"0123456789abcdef";
  return {L'&', L'#', L'x', kDigits[code / 16], kDigits[code % 16], L';'};
}

std::wstring symbolItem(unsigned code) {
  const auto symbol = static_cast<wchar_t>(code);
  const std::wstring name = GetSymbolName(symbol);
  const std::wstring label = name.empty() ? characterReference(code) : name;
  const std::wstring number = FormatSymbolAsNumber(symbol);
  return item(number, concatenate({number, L" (", label, L")"}));
}

std::wstring keyItem(NonPrintableKeys::KeyID key) {
  return item(int_to_wstr(key), NonPrintableKeys::getKeyFullName(key));
}

}  // namespace

void ParametersTableBuilder::BuildProduct(bool keyboardTimeoutShown) {
  BuildHeaderPart();
  BuildPortPart();
  BuildKeyboardDevicePart();
  BuildBitsPart();
  BuildCOMPortSpeedPart();
  BuildGroupDividerPart();
  BuildPrefixPart();
  BuildSuffixPart();
  BuildKeyboardTimeoutPart(keyboardTimeoutShown);
  BuildCOMPortTimeoutAndEncodingPart();
  BuildGSSymbolPart();
  BuildOutputDataTypePart();
  BuildDeviceParametersGroupEndPart();
  BuildLogParametersPart();
  BuildEndPart();
}

void ParametersTableBuilder::BuildHeaderPart() {
  append(concatenate({L"<?xml version=\"1.0\" encoding=\"UTF-8\" ?><Settings><Page Caption=\"",
                      text(form_texts::kPage), L"\"><Group Caption=\"",
                      text(form_texts::kConnectionGroup), L"\">"}));
}

void ParametersTableBuilder::BuildGroupDividerPart() {
  append(concatenate({L"</Group><Group Caption=\"", text(form_texts::kDeviceGroup), L"\">"}));
}

void ParametersTableBuilder::BuildSuffixPart() {
  append(parameter({.name = L"Suffix",
                    .caption = text(form_texts::kSuffix),
                    .type = kNumber,
                    .defaultValue = L"13",
                    .choices = GetSymbolChoiceList()}));
}

std::wstring ParametersTableBuilder::GetSymbolChoiceList() const {
  std::wstring items = item(L"-1", L"&lt;NONE&gt;");
  for (unsigned code = 0; code <= kLastAscii; ++code) items += symbolItem(code);
  return choiceList(items);
}

void ParametersTableBuilder::BuildCOMPortTimeoutAndEncodingPart() {
  append(parameter({.name = L"TimeoutCOM",
                    .caption = text(form_texts::kTimeoutCOM),
                    .type = kNumber,
                    .defaultValue = L"5",
                    .condition = kForSerialPorts}));
  append(parameter({.name = L"COMEncoding",
                    .caption = text(form_texts::kCOMEncoding),
                    .description = text(form_texts::kCOMEncodingDescription),
                    .type = kString,
                    .defaultValue = kEncodingUtf8,
                    .condition = kForSerialPorts,
                    .choices = choiceList(item(kEncodingUtf8, kEncodingUtf8) +
                                          item(kEncodingWindows1251, kEncodingWindows1251))}));
}

void ParametersTableBuilder::BuildGSSymbolPart() {
  std::wstring keys;
  for (int key = NonPrintableKeys::kNoKey; key <= NonPrintableKeys::kLastKey; ++key) {
    keys += keyItem(static_cast<NonPrintableKeys::KeyID>(key));
  }
  append(parameter({.name = L"GSSymbolKey",
                    .caption = text(form_texts::kGSSymbolKey),
                    .description = text(form_texts::kGSSymbolKeyDescription),
                    .type = kNumber,
                    .defaultValue = L"-1",
                    .condition = kForKeyboards,
                    .choices = choiceList(keys)}));
}

// The human-readable form, 1, can be set by a host but is not offered to the user.
void ParametersTableBuilder::BuildOutputDataTypePart() {
  append(parameter({.name = L"OutputDataType",
                    .caption = text(form_texts::kOutputDataType),
                    .type = kNumber,
                    .defaultValue = L"0",
                    .choices = choiceList(item(L"0", text(form_texts::kOutputString)) +
                                          item(L"2", L"Base64"))}));
}

void ParametersTableBuilder::BuildDeviceParametersGroupEndPart() { append(L"</Group></Page>"); }

void ParametersTableBuilder::BuildEndPart() { append(L"</Settings>"); }

}  // namespace quorvel
