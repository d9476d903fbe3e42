#include "tools/common/FormDocument.h"

#include <pugixml.hpp>
#include <stdexcept>

#include "tools/common/Language.h"

namespace terminal {
namespace {

constexpr Text kNoXml = {"the form is no XML from byte ", "форма — не XML, начиная с байта "};
constexpr Text kNoForm = {"the document is no settings form", "документ — не форма настроек"};

std::string attribute(const pugi::xml_node& element, const char* name) {
  return element.attribute(name).value();
}

std::optional<FormCondition> conditionOf(const pugi::xml_node& element) {
  if (!element.attribute("MasterParameterName")) return std::nullopt;
  return FormCondition{attribute(element, "MasterParameterName"),
                       attribute(element, "MasterParameterOperation"),
                       attribute(element, "MasterParameterValue")};
}

std::optional<std::vector<FormChoice>> choicesOf(const pugi::xml_node& element) {
  const pugi::xml_node list = element.child("ChoiceList");
  if (!list) return std::nullopt;
  std::vector<FormChoice> choices;
  for (const pugi::xml_node& item : list.children("Item")) {
    choices.push_back({attribute(item, "Value"), item.child_value()});
  }
  return choices;
}

FormParameter parameterOf(const pugi::xml_node& element) {
  return {.name = attribute(element, "Name"),
          .caption = attribute(element, "Caption"),
          .description = attribute(element, "Description"),
          .type = attribute(element, "TypeValue"),
          .defaultValue = attribute(element, "DefaultValue"),
          .condition = conditionOf(element),
          .choices = choicesOf(element)};
}

FormGroup groupOf(const pugi::xml_node& element) {
  FormGroup group{attribute(element, "Caption"), {}};
  for (const pugi::xml_node& parameter : element.children("Parameter")) {
    group.parameters.push_back(parameterOf(parameter));
  }
  return group;
}

FormPage pageOf(const pugi::xml_node& element) {
  FormPage page{attribute(element, "Caption"), {}};
  for (const pugi::xml_node& group : element.children("Group")) {
    page.groups.push_back(groupOf(group));
  }
  return page;
}

}  // namespace

std::vector<FormPage> readForm(std::string_view document) {
  pugi::xml_document xml;
  // Keep a choice whose name consists of blanks only.
  const pugi::xml_parse_result result = xml.load_buffer(
      document.data(), document.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
  if (!result) throw std::runtime_error(say(kNoXml) + std::to_string(result.offset));
  const pugi::xml_node settings = xml.child("Settings");
  if (!settings) throw std::runtime_error(say(kNoForm));
  std::vector<FormPage> pages;
  for (const pugi::xml_node& page : settings.children("Page")) pages.push_back(pageOf(page));
  return pages;
}

}  // namespace terminal
