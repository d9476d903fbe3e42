#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/common/FormDocument.h"
#include "tools/common/HostText.h"
#include "tools/common/VisibleText.h"
#include "tools/host/Commands.h"

namespace terminal {
namespace {

constexpr Text kDefault = {", by default ", ", по умолчанию "};
constexpr Text kShownWhen = {", shown when ", ", видно, когда "};
constexpr Text kParameters = {"parameters of --set (* marks the default):",
                              "параметры для --set (* отмечает значение по умолчанию):"};
constexpr Text kNothing = {"(nothing to choose from)", "(выбирать не из чего)"};
constexpr const char* kTo = " … ";

// Words of the document, and what to show for them.
struct Word {
  std::string_view word;
  Text meaning;
};
constexpr Word kTypes[] = {{"Number", {"number", "число"}}, {"String", {"text", "текст"}}};
constexpr Word kOperations[] = {{"Equal", {" is ", " равно "}},
                                {"NotEqual", {" is not ", " не равно "}}};

template <std::size_t Count>
std::string meaningOf(const std::string& word, const Word (&table)[Count]) {
  const auto known = std::find_if(std::begin(table), std::end(table),
                                  [&](const Word& entry) { return entry.word == word; });
  return known == std::end(table) ? " " + visible(word) + " " : say(known->meaning);
}

// Longer lists of choices are folded, or they would fill the screen.
constexpr std::size_t kLongList = 30;

// Rows of the table: one choice, or a run of choices with consecutive values.
struct Row {
  bool isDefault;
  std::string value;
  std::string text;
};

// A text that is chosen by its name is quoted: the blanks at its ends count.
std::string shown(const FormParameter& parameter, const std::string& value) {
  return visible(parameter.type == "String" ? '"' + value + '"' : value);
}

// Whether the two belong to one run: consecutive numbers, each also the beginning of its text.
bool follows(const FormChoice& choice, const FormChoice& before) {
  const auto number = [](const FormChoice& of) {
    return std::strtol(of.value.c_str(), nullptr, 10);
  };
  return number(choice) == number(before) + 1 && choice.text.starts_with(choice.value) &&
         before.text.starts_with(before.value);
}

Row rowOf(const FormParameter& parameter, const FormChoice& choice) {
  return {choice.value == parameter.defaultValue, shown(parameter, choice.value),
          choice.text == choice.value ? std::string() : visible(choice.text)};
}

// The end of the run of choices that begins at `first`. The default is never part of a run.
std::size_t endOfRun(const FormParameter& parameter, std::size_t first) {
  const std::vector<FormChoice>& choices = *parameter.choices;
  const auto isDefault = [&](std::size_t at) {
    return choices[at].value == parameter.defaultValue;
  };
  std::size_t end = first + 1;
  while (end < choices.size() && !isDefault(first) && !isDefault(end) &&
         follows(choices[end], choices[end - 1])) {
    ++end;
  }
  return end;
}

std::vector<Row> rowsOf(const FormParameter& parameter, bool folded) {
  const std::vector<FormChoice>& choices = *parameter.choices;
  std::vector<Row> rows;
  for (std::size_t first = 0; first < choices.size();) {
    const std::size_t end = folded ? endOfRun(parameter, first) : first + 1;
    Row row = rowOf(parameter, choices[first]);
    if (end - first > 1) {
      row.value += kTo + shown(parameter, choices[end - 1].value);
      row.text += kTo + visible(choices[end - 1].text);
    }
    rows.push_back(std::move(row));
    first = end;
  }
  return rows;
}

// In characters, not in bytes of UTF-8.
std::size_t widthOf(const std::string& text) { return toHostText(text).size(); }

void printChoices(const FormParameter& parameter, bool all) {
  if (!parameter.choices) return;
  if (parameter.choices->empty()) std::cout << "      " << say(kNothing) << '\n';
  const std::vector<Row> rows = rowsOf(parameter, !all && parameter.choices->size() > kLongList);
  std::size_t width = 0;
  for (const Row& row : rows) width = std::max(width, widthOf(row.value));
  for (const Row& row : rows) {
    std::cout << (row.isDefault ? "    * " : "      ") << row.value;
    if (!row.text.empty()) {
      std::cout << std::string(width - widthOf(row.value), ' ') << "  " << row.text;
    }
    std::cout << '\n';
  }
}

void printParameter(const FormParameter& parameter, bool all) {
  std::cout << "\n  " << visible(parameter.name) << ": " << visible(parameter.caption) << " ("
            << meaningOf(parameter.type, kTypes) << say(kDefault)
            << shown(parameter, parameter.defaultValue);
  if (const auto& condition = parameter.condition) {
    std::cout << say(kShownWhen) << visible(condition->parameter)
              << meaningOf(condition->operation, kOperations) << visible(condition->value);
  }
  std::cout << ")\n";
  if (!parameter.description.empty())
    std::cout << "      " << visible(parameter.description) << '\n';
  printChoices(parameter, all);
}

void printForm(const std::vector<FormPage>& pages, bool all) {
  for (const FormPage& page : pages) {
    std::cout << visible(page.caption) << '\n';
    for (const FormGroup& group : page.groups) {
      std::cout << '\n' << visible(group.caption) << '\n';
      for (const FormParameter& parameter : group.parameters) printParameter(parameter, all);
    }
  }
}

}  // namespace

const Text kFormHelp = {
    R"(usage: quorvel-host form [--all] [--xml]

Shows the settings that the component offers, with the ports and keyboards of this machine;
* marks the default.

options:
  --all  every choice; long lists are folded otherwise
  --xml  the document itself
)",
    R"(запуск: quorvel-host form [--all] [--xml]

Показывает настройки, которые предлагает компонента, с портами и клавиатурами этой машины;
* отмечает значение по умолчанию.

ключи:
  --all  все варианты; иначе длинные списки свёрнуты
  --xml  сам документ
)"};

void printParameters(ComponentLibrary& library) {
  Component component(library, u"InputDevice");
  component.object().SetLocale(userLocale());
  std::cout << '\n' << say(kParameters) << '\n';
  for (const FormPage& page : readForm(toUtf8(component.parameters()))) {
    for (const FormGroup& group : page.groups) {
      for (const FormParameter& parameter : group.parameters) printParameter(parameter, false);
    }
  }
}

int runForm(ComponentLibrary& library, const Arguments& arguments) {
  bool xml = false;
  bool all = false;
  const Arguments rest =
      readOptions(arguments, {{"xml", false, [&](const std::string&) { xml = true; }},
                              {"all", false, [&](const std::string&) { all = true; }}});
  refuseArguments(rest);
  Component component(library, u"InputDevice");
  component.object().SetLocale(userLocale());
  const std::string document = toUtf8(component.parameters());
  if (xml) {
    // A terminal must not act on control characters in the document.
    std::cout << (isatty(STDOUT_FILENO) ? visible(document, "\t\r\n") : document) << '\n';
  } else {
    printForm(readForm(document), all);
  }
  return 0;
}

}  // namespace terminal
