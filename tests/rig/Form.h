// The settings form that a component offers, as a host reads it.
#pragma once

#include <string>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/Program.h"
#include "tools/common/FormDocument.h"
#include "tools/common/HostText.h"

namespace rig {

// The document, in UTF-8.
inline std::string formOf(Driver& driver) {
  return terminal::toUtf8(driver.component.parameters());
}

// The same, from a process that starts in English.
inline std::string englishForm() {
  return outputOf({hostPath(), "--library", englishLibraryPath(), "form", "--xml"});
}

// The parameters of all groups.
inline std::vector<terminal::FormParameter> parametersOf(Driver& driver) {
  std::vector<terminal::FormParameter> parameters;
  for (const auto& page : terminal::readForm(formOf(driver))) {
    for (const auto& group : page.groups) {
      parameters.insert(parameters.end(), group.parameters.begin(), group.parameters.end());
    }
  }
  return parameters;
}

// The values in a parameter's choice list.
inline std::vector<std::string> choicesOf(Driver& driver, const std::string& name) {
  std::vector<std::string> values;
  for (const terminal::FormParameter& parameter : parametersOf(driver)) {
    if (parameter.name != name) continue;
    for (const auto& choice : parameter.choices.value()) values.push_back(choice.value);
  }
  return values;
}

}  // namespace rig
