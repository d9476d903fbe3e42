#include "tools/common/CommandLine.h"

#include <getopt.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <iterator>
#include <limits>
#include <system_error>

#include "QuorvelVersion.h"
#include "tools/common/ErrorTexts.h"
#include "tools/common/Output.h"
#include "tools/common/VisibleText.h"

namespace terminal {
namespace {

constexpr Text kUnknownOption = {"unknown option ", "неизвестный ключ "};
constexpr Text kMissingValue = {"a value is missing after ", "нет значения после "};
constexpr Text kNoCommand = {"a command is missing (see --help)", "нет команды (см. --help)"};
constexpr Text kUnknownCommand = {"unknown command ", "неизвестная команда "};
constexpr Text kNotANumber = {": a number is expected from ", ": ожидается число от "};
constexpr Text kTo = {" to ", " до "};
constexpr Text kUnexpected = {"unexpected argument ", "лишний аргумент "};
constexpr Text kSeeHelp = {" (see --help)", " (см. --help)"};

// Without trailing zeros.
std::string plain(double number) {
  std::string text = std::to_string(number);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

std::vector<option> toGetopt(const std::vector<Option>& options) {
  std::vector<option> table;
  for (const Option& known : options) {
    table.push_back({known.name, known.takesValue ? required_argument : no_argument, nullptr, 0});
  }
  table.push_back({nullptr, 0, nullptr, 0});
  return table;
}

// Everything after "--" is text.
Arguments::const_iterator endOfOptions(const Arguments& words) {
  return std::find(words.begin(), words.end(), "--");
}

bool hasWord(const Arguments& words, std::initializer_list<const char*> wanted) {
  return std::any_of(words.begin(), endOfOptions(words), [&](const std::string& word) {
    return std::find(wanted.begin(), wanted.end(), word) != wanted.end();
  });
}

const Command* commandNamed(const ProgramDescription& program, const std::string& name) {
  for (const Command& command : program.commands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

const Command& requireCommand(const ProgramDescription& program, const std::string& name) {
  const Command* const command = commandNamed(program, name);
  if (!command) throw UsageError(say(kUnknownCommand) + name + say(kSeeHelp));
  return *command;
}

void printHelp(const Command& command) {
  std::cout << say(command.help);
  if (command.printMoreHelp) command.printMoreHelp();
}

// For --help: the help of the first command among the words, if any.
int helpByOption(const ProgramDescription& program, const Arguments& words) {
  for (auto word = words.begin(); word != endOfOptions(words); ++word) {
    const Command* const command = commandNamed(program, *word);
    if (!command) continue;
    printHelp(*command);
    return 0;
  }
  std::cout << say(program.help);
  return 0;
}

int helpByCommand(const ProgramDescription& program, const Arguments& words) {
  if (words.size() > 1) refuseArguments({words.begin() + 1, words.end()});
  if (words.empty()) {
    std::cout << say(program.help);
  } else {
    printHelp(requireCommand(program, words.front()));
  }
  return 0;
}

}  // namespace

Arguments readOptions(const Arguments& arguments, const std::vector<Option>& options,
                      bool stopAtFirst) {
  const std::vector<option> table = toGetopt(options);
  Arguments words = arguments;
  std::vector<char*> argv = {const_cast<char*>("")};
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  const int argc = static_cast<int>(argv.size()) - 1;
  const char* const mode = stopAtFirst ? "+:" : ":";
  optind = 0;  // resets getopt
  int index = 0;
  for (int found; (found = getopt_long(argc, argv.data(), mode, table.data(), &index)) != -1;) {
    const std::string word = argv[static_cast<std::size_t>(optind - 1)];
    if (found == ':') throw UsageError(say(kMissingValue) + word + say(kSeeHelp));
    if (found != 0) throw UsageError(say(kUnknownOption) + word + say(kSeeHelp));
    options[static_cast<std::size_t>(index)].apply(optarg ? optarg : "");
  }
  return Arguments(argv.begin() + optind, argv.begin() + argc);
}

void refuseArguments(const Arguments& rest) {
  if (!rest.empty()) throw UsageError(say(kUnexpected) + rest.front());
}

int runCommand(const ProgramDescription& program, const Arguments& words) {
  if (hasWord(words, {"--version"})) {
    std::cout << program.name << ' ' << quorvel::kVersion << '\n';
    return 0;
  }
  if (hasWord(words, {"--help", "-h"})) return helpByOption(program, words);
  Arguments rest = readOptions(words, program.options, /*stopAtFirst=*/true);
  if (rest.empty()) throw UsageError(say(kNoCommand));
  const std::string name = rest.front();
  rest.erase(rest.begin());
  if (name == "help") return helpByCommand(program, rest);
  return requireCommand(program, name).run(rest);
}

double numberFrom(const std::string& text, const char* what, double lowest, double highest) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(number >= lowest && number <= highest)) {
    throw UsageError(what + std::string(say(kNotANumber)) + plain(lowest) + say(kTo) +
                     plain(highest));
  }
  return number;
}

std::int32_t integerFrom(const std::string& text, const char* what, std::int32_t lowest,
                         std::int32_t highest) {
  const double number = numberFrom(text, what, lowest, highest);
  if (number != std::floor(number)) numberFrom("", what, lowest, highest);
  return static_cast<std::int32_t>(number);
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(file), {}};
  if (!file.is_open() || file.bad()) {
    throw std::system_error(errno, std::generic_category(), path);
  }
  return content;
}

int runProgram(const char* name, const std::function<int()>& body) {
  // Let writing to a closed pipe fail instead.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    const int code = body();
    flushOutput();
    return code;
  } catch (const UsageError& error) {
    std::cerr << name << ": " << visible(error.what()) << '\n';
    return 2;
  } catch (const std::exception& error) {
    std::cerr << name << ": " << visible(messageOf(error)) << '\n';
    return 1;
  }
}

}  // namespace terminal
