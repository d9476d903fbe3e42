#include "parameters/SettingsMarkup.h"

namespace quorvel {
namespace {

std::wstring attribute(std::wstring_view name, std::wstring_view value) {
  return concatenate({L" ", name, L"=\"", value, L"\""});
}

}  // namespace

std::wstring concatenate(std::initializer_list<std::wstring_view> parts) {
  std::wstring whole;
  for (const std::wstring_view part : parts) whole += part;
  return whole;
}

std::wstring item(std::wstring_view value, std::wstring_view text) {
  return concatenate({L"<Item Value=\"", value, L"\">", text, L"</Item>"});
}

std::wstring choiceList(std::wstring_view items) {
  return concatenate({L"<ChoiceList>", items, L"</ChoiceList>"});
}

std::wstring parameter(const FormParameter& parameter) {
  std::wstring element = L"<Parameter";
  element += attribute(L"Name", parameter.name);
  element += attribute(L"Caption", parameter.caption);
  if (!parameter.description.empty()) element += attribute(L"Description", parameter.description);
  element += attribute(L"TypeValue", parameter.type);
  element += attribute(L"DefaultValue", parameter.defaultValue);
  element += parameter.condition;
  if (parameter.choices.empty()) return element + L" />";
  return element + L">" + parameter.choices + L"</Parameter>";
}

}  // namespace quorvel
