#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/SerialLine.h"
#include "tools/common/VisibleText.h"
#include "tools/scanner/Commands.h"
#include "tools/scanner/ScanSource.h"

namespace terminal {
namespace {

constexpr Text kNoLink = {"say where the port is to stand: --link PATH",
                          "укажите, где поставить порт: --link ПУТЬ"};
constexpr Text kUnknownLine = {"--line takes framed, raw or cooked, not ",
                               "--line принимает framed, raw или cooked, а не "};
constexpr Text kWaiting = {"plugged in at ", "подключён к "};
constexpr Text kUntil = {"; Ctrl-C unplugs", "; Ctrl-C — отключить"};

struct SerialOptions {
  std::string link;
  LineSetting line = LineSetting::kFramed;
  bool wait = true;  // for a reader
  ScanOptions scans;
};

LineSetting lineSettingFrom(const std::string& name) {
  if (name == "framed") return LineSetting::kFramed;
  if (name == "raw") return LineSetting::kRaw;
  if (name == "cooked") return LineSetting::kCooked;
  throw UsageError(say(kUnknownLine) + name);
}

Arguments readSerialOptions(const Arguments& arguments, SerialOptions& serial) {
  std::vector<Option> table = serial.scans.table();
  const std::vector<Option> own = {
      {"link", true, [&](const std::string& value) { serial.link = value; }},
      {"line", true, [&](const std::string& value) { serial.line = lineSettingFrom(value); }},
      {"no-wait", false, [&](const std::string&) { serial.wait = false; }},
  };
  table.insert(table.end(), own.begin(), own.end());
  Arguments texts = readOptions(arguments, table);
  if (serial.link.empty()) throw UsageError(say(kNoLink));
  return texts;
}

// Scans all the texts; false when a signal asks to end.
bool scan(SerialLine& line, ScanSource& source, const SerialOptions& serial,
          const EndSignals& end) {
  while (const std::optional<std::string> bytes = source.nextBurst(end)) {
    const bool sent = serial.scans.byteDelay.count() == 0
                          ? line.send(*bytes, end.descriptor())
                          : line.sendSlowly(*bytes, serial.scans.byteDelay, end.descriptor());
    if (!sent || end.wait(serial.scans.pause)) return false;
  }
  return true;
}

}  // namespace

int runSerialScanner(const Arguments& arguments) {
  SerialOptions serial;
  const Arguments texts = readSerialOptions(arguments, serial);
  const EndSignals end;
  ScanSource source(serial.scans, texts);
  SerialLine line(serial.line);
  line.link(serial.link);
  std::cerr << say(kWaiting) << visible(serial.link) << say(kUntil) << std::endl;
  if (serial.wait && !line.waitForReader(end.descriptor())) return 0;
  // Stay plugged in after the last scan, or what the reader has not taken yet would be lost.
  if (scan(line, source, serial, end)) end.wait();
  return 0;
}

}  // namespace terminal
