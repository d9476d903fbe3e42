#include "util/Log.h"

#include <climits>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <thread>

#include "util/Text.h"

namespace quorvel {

std::string getLogFileName() {
  std::string stamp = getCurrentTimeString("%Y%m%d%H%M%S");
  // NOLINTNEXTLINE(concurrency-mt-unsafe): any number will do
  if (stamp.empty()) stamp = std::to_string(std::rand());
  std::ostringstream name;
  // The host's locale may group digits.
  name.imbue(std::locale::classic());
  name << "Quorvel_x" << sizeof(void*) * CHAR_BIT << "_t" << std::this_thread::get_id() << "_"
       << stamp.c_str() << ".txt";
  return name.str();
}

// NOLINTBEGIN(performance-unnecessary-value-param): a log that is switched on keeps its texts
bool Logger::SetLogFolder(std::wstring) { return true; }

void Logger::LogToFile(std::wstring) {}

void log(std::wstring) {}

void log(std::string) {}
// NOLINTEND(performance-unnecessary-value-param)

}  // namespace quorvel
