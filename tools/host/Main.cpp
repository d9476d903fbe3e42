// quorvel-host: a host in a terminal.
#include <filesystem>
#include <iostream>

#include "tools/common/VisibleText.h"
#include "tools/host/Commands.h"

namespace {

using namespace terminal;

constexpr char kName[] = "quorvel-host";

constexpr Text kHelp = {
    R"(quorvel-host - load an input-device component and speak to it as a host does

usage: quorvel-host [--library FILE] COMMAND [OPTION...]
       quorvel-host help COMMAND

commands:
  info      show the component's classes, version, description and methods
  form      show the settings that the component offers
  listen    open a device and print each scan
  list      show the serial ports and keyboards of this machine
  doctor    find out why no scan arrives
  demo      show scans travelling through the component, without any device
  test      open the component's test window: what every port and keyboard sends

options:
  --library FILE  the component library; by default the one beside this program
  -h, --help      show this text, or that of a command
  --version       show the version

exit code: 0 done, 1 failed, 2 the command line is wrong
)",
    R"(quorvel-host - загрузить компоненту устройств ввода и говорить с ней, как это делает хост

запуск: quorvel-host [--library ФАЙЛ] КОМАНДА [КЛЮЧ...]
        quorvel-host help КОМАНДА

команды:
  info      показать классы, версию, описание и методы компоненты
  form      показать настройки, которые предлагает компонента
  listen    открыть устройство и печатать каждое сканирование
  list      показать последовательные порты и клавиатуры этой машины
  doctor    выяснить, почему не приходит скан
  demo      показать, как сканы проходят через компоненту, без устройства
  test      открыть окно теста компоненты: что шлют все порты и клавиатуры

ключи:
  --library ФАЙЛ  библиотека компоненты; по умолчанию та, что рядом с программой
  -h, --help      показать эту справку или справку о команде
  --version       показать версию

код выхода: 0 — выполнено, 1 — ошибка, 2 — неверная командная строка
)"};

// The library of this program's own word size, in this program's folder.
std::string libraryBesideProgram() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  const std::string name = "QuorvelNativeLin" + std::to_string(sizeof(void*) * 8) + ".so";
  return program.parent_path() / name;
}

// The rest of the help is useful even without a library.
void printParametersIfPossible(const std::string& path) {
  try {
    ComponentLibrary library(path);
    printParameters(library);
  } catch (const std::runtime_error& error) {
    std::cout << '\n' << visible(error.what()) << '\n';
  }
}

int run(const Arguments& words) {
  std::string path = libraryBesideProgram();
  // Loads the library only when a command runs: by then --library has been read.
  const auto with = [&path](int (*command)(ComponentLibrary&, const Arguments&)) {
    return [&path, command](const Arguments& arguments) {
      ComponentLibrary library(path);
      return command(library, arguments);
    };
  };
  const ProgramDescription program = {
      kName,
      kHelp,
      {{"library", true, [&](const std::string& value) { path = value; }}},
      {{"info", kInfoHelp, with(runInfo)},
       {"form", kFormHelp, with(runForm)},
       {"listen", kListenHelp, with(runListen), [&] { printParametersIfPossible(path); }},
       {"list", kListHelp, runList},
       {"doctor", kDoctorHelp, with(runDoctor), [&] { printParametersIfPossible(path); }},
       {"demo", kDemoHelp, with(runDemo)},
       {"test", kTestHelp, with(runTest)}}};
  return runCommand(program, words);
}

}  // namespace

int main(int argc, char** argv) {
  return runProgram(kName, [&] { return run(Arguments(argv + 1, argv + argc)); });
}
