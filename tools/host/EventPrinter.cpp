#include "tools/host/EventPrinter.h"

#include <chrono>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <string>

#include "tools/common/HostText.h"
#include "tools/common/Output.h"
#include "tools/common/VisibleText.h"
#include "tools/host/JsonOutput.h"

namespace terminal {
namespace {

// The local time of an event. `format` and `zone` are strftime formats for the parts before and
// after the milliseconds.
std::string timeText(const Event& event, const char* format, const char* zone) {
  using namespace std::chrono;
  const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(event.time));
  const auto milliseconds =
      duration_cast<std::chrono::milliseconds>(event.time.time_since_epoch()).count() % 1000;
  std::tm local = {};
  localtime_r(&seconds, &local);
  std::ostringstream text;
  text << std::put_time(&local, format) << '.' << std::setw(3) << std::setfill('0') << milliseconds
       << std::put_time(&local, zone);
  return text.str();
}

Json jsonOf(const Event& event) {
  return {{"time", timeText(event, "%FT%T", "%z")},
          {"source", toUtf8(event.source)},
          {"event", toUtf8(event.name)},
          {"data", toUtf8(event.data)}};
}

std::string asText(const Event& event) {
  std::string line = timeText(event, "%T", "");
  for (const std::u16string* part : {&event.source, &event.name, &event.data}) {
    line += "  " + visible(toUtf8(*part));
  }
  return line;
}

}  // namespace

void print(const Event& event, EventFormat format) {
  if (format == EventFormat::kJson) {
    writeJson(jsonOf(event));
  } else {
    writeLine(asText(event));
  }
}

}  // namespace terminal
