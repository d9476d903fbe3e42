// A component's settings form, parsed from its XML.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace terminal {

// Every text is UTF-8.
struct FormChoice {
  std::string value;
  std::string text;
};

// The parameter is shown only while another one has, or does not have, a certain value.
struct FormCondition {
  std::string parameter;
  std::string operation;  // "Equal" or "NotEqual"
  std::string value;
};

struct FormParameter {
  std::string name;
  std::string caption;
  std::string description;
  std::string type;  // "Number" or "String"
  std::string defaultValue;
  std::optional<FormCondition> condition;
  std::optional<std::vector<FormChoice>> choices;  // without it any value may be entered
};

struct FormGroup {
  std::string caption;
  std::vector<FormParameter> parameters;
};

struct FormPage {
  std::string caption;
  std::vector<FormGroup> groups;
};

// Parses a document in UTF-8. Throws std::runtime_error when it is not well-formed or not a
// settings form.
std::vector<FormPage> readForm(std::string_view document);

}  // namespace terminal
