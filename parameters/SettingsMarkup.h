// The elements of the settings document, written as the host expects them: attributes in a fixed
// order, nothing between the elements. Texts are inserted as they are; the caller escapes them
// where needed.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quorvel {

// A parameter of the form. Its attributes are written in the order of the members.
struct FormParameter {
  std::wstring_view name;  // as SetParameter knows it
  std::wstring_view caption;
  std::wstring_view description = {};  // omitted when empty
  std::wstring_view type;              // kNumber or kString
  std::wstring_view defaultValue;
  std::wstring_view condition = {};  // attributes saying when the parameter is shown
  std::wstring choices = {};         // a choice list; when empty, any value can be entered
};

inline constexpr std::wstring_view kNumber = L"Number";
inline constexpr std::wstring_view kString = L"String";

std::wstring parameter(const FormParameter& parameter);

// A choice list of these items.
std::wstring choiceList(std::wstring_view items);

// One choice: the value to set and the text that the user sees.
std::wstring item(std::wstring_view value, std::wstring_view text);

// The parts joined into one text.
std::wstring concatenate(std::initializer_list<std::wstring_view> parts);

}  // namespace quorvel
