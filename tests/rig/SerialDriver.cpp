#include "tests/rig/SerialDriver.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <utility>

namespace rig {

std::string portPath(std::int32_t port) {
  if (port <= 64) return "/dev/ttyS" + std::to_string(port - 1);
  if (port <= 128) return "/dev/ttyACM" + std::to_string(port - 65);
  return "/dev/ttyUSB" + std::to_string(port - 129);
}

Waking::Waking(std::vector<terminal::SerialLine*> lines)
    : lines_(std::move(lines)), end_(eventfd(0, EFD_CLOEXEC)), thread_([this] { wake(); }) {}

Waking::~Waking() {
  eventfd_write(end_.get(), 1);
  thread_.join();
}

void Waking::wake() {
  constexpr int kPause = 2;  // milliseconds
  pollfd end = {end_.get(), POLLIN, 0};
  do {
    for (terminal::SerialLine* line : lines_) {
      if (!line->send("\r", end_.get())) return;
    }
  } while (poll(&end, 1, kPause) == 0);
}

SerialDriver::~SerialDriver() { closeAll(); }

terminal::SerialLine& SerialDriver::plugIn(std::int32_t port, terminal::LineSetting setting) {
  lines.emplace_back(setting).link(portPath(port));
  return lines.back();
}

std::u16string SerialDriver::open(std::int32_t port) { return ids.emplace_back(openPort(port)); }

bool SerialDriver::close(std::u16string id) {
  std::vector<terminal::SerialLine*> all;
  for (terminal::SerialLine& line : lines) all.push_back(&line);
  const Waking waking(all);
  std::erase(ids, id);
  return component.close(id);
}

void SerialDriver::closeAll() {
  while (!ids.empty()) close(ids.back());
}

}  // namespace rig
