// What list shows a person.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/host/SerialExamination.h"
#include "tools/host/SerialPorts.h"
#include "tools/host/XDisplay.h"

namespace terminal {

// A serial port with everything that can be told of it.
struct ListedPort {
  std::int32_t number;
  SerialExamination examined;
  Product product;
  std::string link;  // the stable one; empty without
};

// Print to standard output, each with notes on what may keep scans from arriving.
void printPorts(const std::vector<ListedPort>& ports);
void printKeyboards(XDisplay& display);

}  // namespace terminal
