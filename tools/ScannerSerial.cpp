#include <iostream>
#include <sstream>

#include "tools/ScanSource.h"
#include "tools/ScannerCommands.h"
#include "tools/SerialLine.h"

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
  std::string suffix = "\r";
  std::chrono::microseconds byteDelay{0};
  int burst = 1;     // scans in one write
  bool wait = true;  // for a reader
  ScanOptions scans;
};

LineSetting lineSettingFrom(const std::string& name) {
  if (name == "framed") return LineSetting::kFramed;
  if (name == "raw") return LineSetting::kRaw;
  if (name == "cooked") return LineSetting::kCooked;
  throw UsageError(say(kUnknownLine) + name);
}

// Character codes separated by commas; the empty text is no suffix.
std::string suffixFrom(const std::string& codes) {
  std::string suffix;
  std::istringstream list(codes);
  for (std::string code; std::getline(list, code, ',');) {
    suffix += static_cast<char>(integerFrom(code, "--suffix", 0, 255));
  }
  return suffix;
}

Arguments readSerialOptions(const Arguments& arguments, SerialOptions& serial) {
  std::vector<Option> table = serial.scans.table();
  const std::vector<Option> own = {
      {"link", true, [&](const std::string& value) { serial.link = value; }},
      {"line", true, [&](const std::string& value) { serial.line = lineSettingFrom(value); }},
      {"suffix", true, [&](const std::string& value) { serial.suffix = suffixFrom(value); }},
      {"byte-delay", true,
       [&](const std::string& value) {
         const double milliseconds = numberFrom(value, "--byte-delay", 0, 10000);
         serial.byteDelay = std::chrono::microseconds(static_cast<long>(milliseconds * 1000));
       }},
      {"burst", true,
       [&](const std::string& value) { serial.burst = integerFrom(value, "--burst", 1, 10000); }},
      {"no-wait", false, [&](const std::string&) { serial.wait = false; }},
  };
  table.insert(table.end(), own.begin(), own.end());
  Arguments texts = readOptions(arguments, table);
  if (serial.link.empty()) throw UsageError(say(kNoLink));
  return texts;
}

// The next scans of one write; empty at the end.
std::string nextBurst(ScanSource& source, const SerialOptions& serial, const EndSignals& end) {
  std::string bytes;
  for (int i = 0; i < serial.burst; ++i) {
    const std::optional<std::string> text = source.next(end);
    if (!text) break;
    bytes += *text + serial.suffix;
  }
  return bytes;
}

// Scans all the texts; false when a signal asks for the end.
bool scan(SerialLine& line, ScanSource& source, const SerialOptions& serial,
          const EndSignals& end) {
  for (std::string bytes; !(bytes = nextBurst(source, serial, end)).empty();) {
    const bool sent = serial.byteDelay.count() == 0
                          ? line.send(bytes, end.descriptor())
                          : line.sendSlowly(bytes, serial.byteDelay, end.descriptor());
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
  std::cerr << say(kWaiting) << serial.link << say(kUntil) << std::endl;
  if (serial.wait && !line.waitForReader(end.descriptor())) return 0;
  // A scanner stays plugged in after its last scan: what the reader has not yet taken is not lost.
  if (scan(line, source, serial, end)) end.wait();
  return 0;
}

}  // namespace terminal
