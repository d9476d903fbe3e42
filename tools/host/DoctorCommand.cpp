#include <chrono>
#include <string>
#include <vector>

#include "tools/host/Commands.h"
#include "tools/host/DeviceOptions.h"
#include "tools/host/Doctors.h"

namespace terminal {
namespace {

struct DoctorOptions {
  DeviceOptions device;
  std::chrono::seconds patience{20};
  bool json = false;
};

DoctorOptions doctorOptionsFrom(const Arguments& arguments) {
  DoctorOptions doctor;
  std::vector<Option> table = doctor.device.table();
  const auto takeSeconds = [&](const std::string& value) {
    doctor.patience = std::chrono::seconds(integerFrom(value, "--seconds", 0, 86400));
  };
  table.insert(table.end(), {{"seconds", true, takeSeconds},
                             {"json", false, [&](const std::string&) { doctor.json = true; }}});
  const Arguments rest = readOptions(arguments, table);
  refuseArguments(rest);
  doctor.device.requireDevice();
  return doctor;
}

}  // namespace

const Text kDoctorHelp = {
    R"(usage: quorvel-host doctor (--port N|FILE | --keyboard NAME) [OPTION...]

Finds out why no scan arrives: examines the device, then waits for a scan and says what the
component would make of it. The line is left as it was found.

options:
  --port N|FILE     the serial port, as of listen
  --keyboard NAME   the scanner that types, by its name in the form
  --seconds S       how long to wait for a scan (default 20); 0 only examines
  --set NAME=VALUE  a parameter that the application sets; may be repeated
  --json            one JSON object

exit code: 0 a scan arrived that the component delivers whole, 1 otherwise, 2 the command
line is wrong
)",
    R"(запуск: quorvel-host doctor (--port N|ФАЙЛ | --keyboard ИМЯ) [КЛЮЧ...]

Выясняет, почему не приходит скан: осматривает устройство, затем ждёт скана и говорит, что
сделает из него компонента. Линия остаётся такой, какой была.

ключи:
  --port N|ФАЙЛ     последовательный порт, как у listen
  --keyboard ИМЯ    сканер-клавиатура, имя как в форме настроек
  --seconds С       сколько секунд ждать скана (по умолчанию 20); 0 — только осмотреть
  --set ИМЯ=ЗНАЧ    параметр, который задаёт приложение; можно повторять
  --json            объект JSON

код выхода: 0 — пришёл скан, который компонента передаёт целиком, 1 — нет, 2 — неверная
командная строка
)"};

int runDoctor(ComponentLibrary& library, const Arguments& arguments) {
  const DoctorOptions doctor = doctorOptionsFrom(arguments);
  const DriverSettings settings = settingsFrom(doctor.device);
  const EndSignals end;
  {
    // The component knows its parameters.
    Component component(library, u"InputDevice");
    doctor.device.applyTo(component);
  }
  const auto& [port, keyboard, parameters] = doctor.device;
  const Diagnosis diagnosis = port ? examineSerial(*port, settings, doctor.patience, end)
                                   : examineKeyboard(*keyboard, settings, doctor.patience, end);
  print(diagnosis, doctor.json);
  return diagnosis.isOk ? 0 : 1;
}

}  // namespace terminal
