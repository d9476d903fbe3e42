#include "devices/SerialFamilies.h"

#include <cstdio>

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

}  // namespace quorvel
