#include "tests/rig/SerialDriver.h"

namespace rig {

std::string portPath(std::int32_t port) {
  if (port <= 64) return "/dev/ttyS" + std::to_string(port - 1);
  if (port <= 128) return "/dev/ttyACM" + std::to_string(port - 65);
  return "/dev/ttyUSB" + std::to_string(port - 129);
}

SerialDriver::~SerialDriver() { closeAll(); }

terminal::SerialLine& SerialDriver::plugIn(std::int32_t port, terminal::LineSetting setting) {
  lines.emplace_back(setting).link(portPath(port));
  return lines.back();
}

std::u16string SerialDriver::open(std::int32_t port) { return ids.emplace_back(openPort(port)); }

bool SerialDriver::close(std::u16string id) {
  std::erase(ids, id);
  return component.close(id);
}

void SerialDriver::closeAll() {
  while (!ids.empty()) close(ids.back());
}

}  // namespace rig
