#include "tools/host/SerialPorts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "tools/host/PortFile.h"

namespace terminal {
namespace {

namespace fs = std::filesystem;

std::string firstLineOf(const fs::path& file) {
  std::string line;
  std::getline(std::ifstream(file), line);
  return line;
}

}  // namespace

std::vector<std::int32_t> serialPorts() {
  std::vector<std::int32_t> ports;
  std::error_code error;
  fs::directory_iterator entry("/dev", error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    if (const auto port = portOfName(entry->path().string())) ports.push_back(*port);
  }
  std::sort(ports.begin(), ports.end());
  return ports;
}

Product productOf(std::int32_t port, const std::string& ttyClass) {
  const std::string file = portFile(port);
  std::error_code error;
  const fs::path link = fs::path(ttyClass) / file.substr(file.rfind('/') + 1) / "device";
  fs::path device = fs::canonical(link, error);
  if (error) return {};
  // The port is an interface of a USB device, some folders above it.
  for (; device != device.root_path(); device = device.parent_path()) {
    if (!fs::exists(device / "idVendor", error)) continue;
    return {firstLineOf(device / "manufacturer"), firstLineOf(device / "product"),
            firstLineOf(device / "serial")};
  }
  return {};
}

std::string stableLinkOf(std::int32_t port) {
  std::string first;
  std::error_code error;
  fs::directory_iterator entry("/dev/serial/by-id", error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const std::string link = entry->path().string();
    if (portBehind(link) == port && (first.empty() || link < first)) first = link;
  }
  return first;
}

}  // namespace terminal
