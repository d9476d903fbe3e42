#include "devices/SerialFamilies.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "util/Handles.h"

namespace quorvel {
namespace {

std::string readToEnd(int descriptor) {
  std::string text;
  char part[4096];
  ssize_t got;
  while ((got = ::read(descriptor, part, sizeof part)) > 0 || (got < 0 && errno == EINTR)) {
    if (got > 0) text.append(part, static_cast<std::size_t>(got));
  }
  return text;
}

// A line and its end. A line that is too long is split.
std::string lineAt(const std::string& text, std::size_t start) {
  constexpr std::size_t kLongestLine = 511;
  const std::string line = text.substr(start, kLongestLine);
  return line.substr(0, std::min(line.find('\n'), line.size() - 1) + 1);
}

}  // namespace

const SerialFamily& serialFamilyOf(std::uint32_t port) {
  const SerialFamily* family = kSerialFamilies.data();
  for (const SerialFamily& candidate : kSerialFamilies) {
    if (port >= candidate.firstPort()) family = &candidate;
  }
  return *family;
}

std::string devicePathOf(std::uint32_t port) {
  const SerialFamily& family = serialFamilyOf(port);
  return "/dev/" + std::string(family.prefix) + std::to_string(port - family.firstPort());
}

std::wstring shortNameOf(std::uint32_t port) {
  const SerialFamily& family = serialFamilyOf(port);
  return std::wstring(family.shortName) + std::to_wstring(port - family.base);
}

std::vector<std::string> findDeviceFiles(std::string_view prefix) {
  const std::string command = "find /dev/ -name \"" + std::string(prefix) + "*\"";
  const Pipe pipe(popen(command.c_str(), "r"));
  if (!pipe) return {};
  // Not by way of the stream: it takes a signal of the host's for the end of the output.
  const std::string output = readToEnd(fileno(pipe.get()));
  std::vector<std::string> paths;
  for (std::size_t start = 0; start < output.size(); start += paths.back().size()) {
    paths.push_back(lineAt(output, start));
  }
  return paths;
}

std::int32_t deviceFileNumber(const std::string& path, std::string_view prefix) {
  const std::string start = "/dev/" + std::string(prefix);
  if (!path.starts_with(start)) return 0;
  const long long number = std::strtoll(path.c_str() + start.size(), nullptr, 10);
  return std::in_range<std::int32_t>(number) ? static_cast<std::int32_t>(number) : 0;
}

}  // namespace quorvel
