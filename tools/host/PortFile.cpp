#include "tools/host/PortFile.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>

#include "tools/common/CommandLine.h"

namespace terminal {
namespace {

namespace fs = std::filesystem;

constexpr Text kNoPort = {" leads to no serial port (ttyS, ttyACM or ttyUSB)",
                          " не ведёт к последовательному порту (ttyS, ttyACM или ttyUSB)"};

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();

struct Family {
  std::string_view prefix;  // of the file's name
  std::int32_t base;        // the port number before the first file's
  std::int32_t files;
  const char* formName;
  const char* windowName;
};
constexpr Family kFamilies[] = {{"ttyS", 0, 64, "COM", "COM"},
                                {"ttyACM", 64, 64, "Virtual COM", "ACM"},
                                {"ttyUSB", 128, kLargest - 128, "USB COM", "USB"}};

const Family& familyOf(std::int32_t port) {
  const Family* family = std::begin(kFamilies);
  while (port - family->base > family->files) ++family;
  return *family;
}

bool isCanonicalNumber(std::string_view digits) {
  return !digits.empty() && digits.size() < 10 &&
         std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }) &&
         (digits.size() == 1 || digits.front() != '0');
}

// The links that a kernel follows at most.
constexpr int kLongestChain = 40;

// Whether the text is meant as a file: a number has no slash, and no file stands under its name.
bool namesFile(const std::string& text) {
  std::error_code error;
  return text.find('/') != text.npos || portOfName("/dev/" + text) ||
         (!text.empty() && fs::exists(fs::symlink_status(text, error)));
}

}  // namespace

std::string portFile(std::int32_t port) {
  const Family& family = familyOf(port);
  return "/dev/" + std::string(family.prefix) + std::to_string(port - family.base - 1);
}

std::optional<std::int32_t> portOfName(const std::string& file) {
  for (const Family& family : kFamilies) {
    const std::string start = "/dev/" + std::string(family.prefix);
    if (!file.starts_with(start)) continue;
    const std::string digits = file.substr(start.size());
    if (!isCanonicalNumber(digits)) continue;
    const std::int32_t number = std::stoi(digits);
    if (number < family.files) return family.base + number + 1;
  }
  return std::nullopt;
}

std::optional<std::int32_t> portBehind(fs::path file) {
  std::error_code error;
  for (int links = 0; links < kLongestChain; ++links) {
    // The folder may itself be reached by links; the last name is looked at as it is.
    file = fs::weakly_canonical(file.parent_path(), error) / file.filename();
    if (const auto port = portOfName(file.lexically_normal().string())) return port;
    const fs::path target = fs::read_symlink(file, error);
    if (error) return std::nullopt;
    file = file.parent_path() / target;
  }
  return std::nullopt;
}

std::int32_t portFrom(const std::string& numberOrFile) {
  if (!namesFile(numberOrFile)) return integerFrom(numberOrFile, "--port", 1, kLargest);
  const bool isBareName = portOfName("/dev/" + numberOrFile).has_value();
  const fs::path file = isBareName ? fs::path("/dev") / numberOrFile : fs::absolute(numberOrFile);
  if (const auto port = portBehind(file)) return *port;
  throw UsageError("--port: " + numberOrFile + say(kNoPort));
}

std::string formName(std::int32_t port) {
  const Family& family = familyOf(port);
  return family.formName + std::to_string(port - family.base);
}

std::string windowName(std::int32_t port) {
  const Family& family = familyOf(port);
  return family.windowName + std::to_string(port - family.base);
}

}  // namespace terminal
