#include "devices/SerialFamilies.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "util/Handles.h"

namespace quorvel {

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
  std::vector<std::string> paths;
  char line[512];
  while (std::fgets(line, sizeof line, pipe.get())) paths.emplace_back(line);
  return paths;
}

std::int32_t deviceFileNumber(const std::string& path, std::string_view prefix) {
  const std::string start = "/dev/" + std::string(prefix);
  if (!path.starts_with(start)) return 0;
  const long long number = std::strtoll(path.c_str() + start.size(), nullptr, 10);
  return std::in_range<std::int32_t>(number) ? static_cast<std::int32_t>(number) : 0;
}

}  // namespace quorvel
