// The diagnostic log. It is switched off in this build: texts are accepted and discarded. May be
// called on any thread.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

// The name of a log file, made of the word size, the calling thread and the local time:
// "Quorvel_x32_t3071232768_20261115133505.txt".
std::string getLogFileName();

inline constexpr std::string_view kLogFolder = "/tmp/";

class Logger {
 public:
  // Ignores the folder. Always true.
  bool SetLogFolder(std::wstring folder);
  void LogToFile(std::wstring text);

 private:
  std::string path_;
};

void log(std::wstring text);
void log(std::string text);

}  // namespace quorvel
