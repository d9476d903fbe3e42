// A component with serial ports of the test's own plugged in.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include "tests/rig/Driver.h"
#include "tools/common/SerialLine.h"
#include "util/Handles.h"

namespace rig {

// The device file of a port number.
std::string portPath(std::int32_t port);

// While it lives, wakes the readers of the lines again and again: a reader notices that its device
// is being closed when its step of a second is over or when something comes. What wakes it is a
// carriage return, which is no message to a device that ends messages with one.
class Waking {
 public:
  explicit Waking(std::vector<terminal::SerialLine*> lines);
  ~Waking();
  Waking(const Waking&) = delete;
  Waking& operator=(const Waking&) = delete;

 private:
  void wake();

  std::vector<terminal::SerialLine*> lines_;
  quorvel::FileDescriptor end_;
  std::thread thread_;
};

struct SerialDriver : Driver {
  using Driver::Driver;
  // Closes what is open without waiting for the readers' steps.
  ~SerialDriver();

  // A line with a scanner at its end, at the place of the port.
  terminal::SerialLine& plugIn(std::int32_t port,
                               terminal::LineSetting setting = terminal::LineSetting::kFramed);

  // Opens the port like openPort; the device is closed with this driver at the latest.
  std::u16string open(std::int32_t port);
  // Closes a device, and all that are open.
  bool close(std::u16string id);
  void closeAll();

  std::deque<terminal::SerialLine> lines;
  std::vector<std::u16string> ids;  // of the open devices
};

}  // namespace rig
