// The serial ports of this machine, and what the system knows about the devices behind them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace terminal {

// The numbers of the ports that stand in /dev, ascending.
std::vector<std::int32_t> serialPorts();

// What a USB device says about itself; empty where it says nothing.
struct Product {
  std::string maker;
  std::string name;
  std::string serialNumber;
};

// The device behind a port, looked up in sysfs.
Product productOf(std::int32_t port, const std::string& ttyClass = "/sys/class/tty");

// The link in /dev/serial/by-id that leads to the port, wherever it is plugged in; of several the
// first by name, empty without one.
std::string stableLinkOf(std::int32_t port);

}  // namespace terminal
