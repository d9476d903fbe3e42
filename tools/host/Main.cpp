// quorvel-host: a host in a terminal.
#include <filesystem>

#include "tools/host/Commands.h"

namespace {

using namespace terminal;

constexpr Text kHelp = {
    R"(quorvel-host - load an input-device component and speak to it as a host does

usage: quorvel-host [--library FILE] COMMAND [OPTION...]

commands:
  info      show the component's classes, version, description and methods
  form      show the settings that the component offers, with the ports and keyboards
            of this machine; * marks the default
              --all             every choice; long lists are folded otherwise
              --xml             the document itself
  listen    open a device and print each scan until Ctrl-C
              --port N          the serial port: 1-64 ttyS0 onward, 65-128 ttyACM0
                                onward, 129 and up ttyUSB0 onward
              --keyboard NAME   the scanner that types, by its name in the form
              --set NAME=VALUE  set a parameter first; may be repeated
              --class NAME      InputDevice (default) or CardReaderDevice
              --count N         end by itself after N scans
              --json            one JSON object per scan
  test      open the component's test window: what every port and keyboard sends

options:
  --library FILE  the component library; by default the one beside this program
  --help          show this text

exit code: 0 done, 1 failed, 2 the command line is wrong
)",
    R"(quorvel-host - загрузить компоненту устройств ввода и говорить с ней, как это делает хост

запуск: quorvel-host [--library ФАЙЛ] КОМАНДА [КЛЮЧ...]

команды:
  info      показать классы, версию, описание и методы компоненты
  form      показать настройки, которые предлагает компонента, с портами и клавиатурами
            этой машины; * отмечает значение по умолчанию
              --all             все варианты; иначе длинные списки свёрнуты
              --xml             сам документ
  listen    открыть устройство и печатать каждое сканирование до Ctrl-C
              --port N          последовательный порт: 1-64 — ttyS0 и далее, 65-128 —
                                ttyACM0 и далее, от 129 — ttyUSB0 и далее
              --keyboard ИМЯ    сканер-клавиатура, имя как в форме настроек
              --set ИМЯ=ЗНАЧ    сначала задать параметр; можно повторять
              --class ИМЯ       InputDevice (по умолчанию) или CardReaderDevice
              --count N         закончить после N сканирований
              --json            каждое сканирование — объект JSON
  test      открыть окно теста компоненты: что шлют все порты и клавиатуры

ключи:
  --library ФАЙЛ  библиотека компоненты; по умолчанию та, что рядом с программой
  --help          показать эту справку

код выхода: 0 — выполнено, 1 — ошибка, 2 — неверная командная строка
)"};

// The library of this program's own word size, in this program's folder.
std::string libraryBesideProgram() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  const std::string name = "QuorvelNativeLin" + std::to_string(sizeof(void*) * 8) + ".so";
  return program.parent_path() / name;
}

int run(const Arguments& words) {
  std::string path = libraryBesideProgram();
  bool help = false;
  const std::vector<Option> options = {
      {"library", true, [&](const std::string& value) { path = value; }},
      {"help", false, [&](const std::string&) { help = true; }},
  };
  Arguments rest = readOptions(words, options, /*stopAtFirst=*/true);
  if (help) rest = {"--help"};
  // A command meets the library only once its name is known.
  const auto with = [&path](int (*command)(ComponentLibrary&, const Arguments&)) {
    return [&path, command](const Arguments& arguments) {
      ComponentLibrary library(path);
      return command(library, arguments);
    };
  };
  return runCommand({{"info", with(runInfo)},
                     {"form", with(runForm)},
                     {"listen", with(runListen)},
                     {"test", with(runTest)}},
                    rest, kHelp);
}

}  // namespace

int main(int argc, char** argv) {
  return runProgram("quorvel-host", [&] { return run(Arguments(argv + 1, argv + argc)); });
}
