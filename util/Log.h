// The diagnostic log. It is switched off in this build: callers hand over their texts, and nothing
// is written anywhere. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

// "Quorvel_x32_t3071232768_20261115133505.txt": the word size, the calling thread and the local
// time. The folder of log files is kLogFolder.
std::string getLogFileName();

inline constexpr std::string_view kLogFolder = "/tmp/";

class Logger {
 public:
  // Accepts any folder and ignores it. Always true.
  bool SetLogFolder(std::wstring folder);
  void LogToFile(std::wstring text);

 private:
  std::string path_;
};

void log(std::wstring text);
void log(std::string text);

}  // namespace quorvel
