// What doctor has found out, as it is shown.
#pragma once

#include <optional>
#include <string>

#include "tools/host/Findings.h"

namespace terminal {

struct Diagnosis {
  bool isOk = false;  // a scan came that the driver would deliver whole and unaltered
  Findings findings;
  std::optional<std::string> bytes;  // what came
  std::optional<std::string> scan;   // the data of the event
};

// Writes it to the output: for a person, or as one JSON object.
void print(const Diagnosis& diagnosis, bool json);

}  // namespace terminal
