// Findings about a serial port from outside, and about what came from it.
#pragma once

#include <cstdint>
#include <string>

#include "tools/host/DriverSettings.h"
#include "tools/host/Findings.h"
#include "tools/host/SerialExamination.h"

namespace terminal {

// What makes reading the port useless: it is missing, may not be read, is not a line, or is read by
// somebody else.
Findings obstaclesOf(std::int32_t port, const SerialExamination& examined);

// How the line and the settings fit each other: a cooked line without Suffix=10.
Findings lineWarnings(std::int32_t port, const SerialExamination& examined,
                      const DriverSettings& settings);

// On a raw line a scan may come in pieces, which only its bytes can tell.
Findings rawLineNotes(std::int32_t port, const SerialExamination& examined);

// Whether the driver uses another speed than the one that was set, and the finding about it.
bool isUnknownSpeed(std::int32_t bitsPerSecond);
Finding speedWarning(const DriverSettings& settings);

// The command that frames the line.
std::string framingCommand(std::int32_t port);

}  // namespace terminal
