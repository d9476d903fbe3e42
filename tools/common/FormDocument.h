// The settings form of a component, read from its document.
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

// Shown only while another parameter has a value, or has another one.
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
  std::optional<std::vector<FormChoice>> choices;  // without them any value may be entered
};

struct FormGroup {
  std::string caption;
  std::vector<FormParameter> parameters;
};

struct FormPage {
  std::string caption;
  std::vector<FormGroup> groups;
};

// Reads a document in UTF-8. Throws std::runtime_error when it is no XML, or no settings form.
std::vector<FormPage> readForm(std::string_view document);

}  // namespace terminal
