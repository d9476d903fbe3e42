#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "tools/common/HostText.h"
#include "tools/common/VisibleText.h"
#include "tools/host/Commands.h"

namespace terminal {
namespace {

constexpr Text kInfoNoArguments = {"info takes no arguments", "info не принимает аргументов"};

constexpr Text kVersion = {"version", "версия"};
constexpr Text kMethods = {"methods", "методы"};

// The outputs of the description, in their order.
constexpr Text kDescription[] = {
    {"name", "название"},
    {"description", "описание"},
    {"equipment", "оборудование"},
    {"interface revision", "ревизия интерфейса"},
    {"integration component", "компонента интеграции"},
    {"main driver installed", "основной драйвер установлен"},
    {"download address", "адрес загрузки"},
};

// Prints a label and its value on one line. Widths are in characters, not in bytes of UTF-8.
void printRow(const std::u16string& label, const std::u16string& value, std::size_t width) {
  std::cout << "  " << visible(toUtf8(label))
            << std::string(width - std::min(width, label.size()), ' ') << "  "
            << visible(toUtf8(value)) << '\n';
}

void printMethods(Component& component) {
  constexpr std::size_t kNameWidth = 22;
  std::cout << "  " << say(kMethods) << '\n';
  IComponentBase& object = component.object();
  const auto nameOf = [&](long number, long language) {
    void* block = const_cast<WCHAR_T*>(object.GetMethodName(number, language));
    std::u16string name = copyOf(static_cast<const WCHAR_T*>(block));
    component.memory().FreeMemory(&block);
    return name;
  };
  for (long number = 0; number < object.GetNMethods(); ++number) {
    const std::u16string parameters = toHostText(std::to_string(object.GetNParams(number)));
    printRow(u"  " + nameOf(number, 0) + u"(" + parameters + u")", nameOf(number, 1),
             kNameWidth + 3);
  }
}

void printClass(ComponentLibrary& library, const std::u16string& name) {
  constexpr std::size_t kLabelWidth = 27;
  Component component(library, name);
  component.object().SetLocale(userLocale());
  std::cout << visible(toUtf8(name)) << '\n';
  printRow(toHostText(say(kVersion)), component.version(), kLabelWidth);
  const std::vector<std::u16string> description = component.description();
  for (std::size_t i = 0; i < description.size(); ++i) {
    printRow(toHostText(say(kDescription[i])), description[i], kLabelWidth);
  }
  printMethods(component);
}

}  // namespace

const Text kInfoHelp = {
    R"(usage: quorvel-host info

Shows the component's classes with their version, description and methods.
)",
    R"(запуск: quorvel-host info

Показывает классы компоненты, их версию, описание и методы.
)"};

int runInfo(ComponentLibrary& library, const Arguments& arguments) {
  if (!readOptions(arguments, {}).empty()) throw UsageError(say(kInfoNoArguments));
  std::istringstream names(toUtf8(copyOf(library.GetClassNames())));
  for (std::string name; std::getline(names, name, '|');) printClass(library, toHostText(name));
  return 0;
}

}  // namespace terminal
