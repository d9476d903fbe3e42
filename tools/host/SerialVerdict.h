// What the driver would make of what came from a serial port.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/host/DriverSettings.h"
#include "tools/host/Findings.h"
#include "tools/host/LineWatch.h"

namespace terminal {

struct Verdict {
  // The first message that the driver would deliver, without its suffix; nothing when there is
  // none.
  std::optional<std::string> message;
  // Why it would not be delivered, or not as it was sent. None: all is well.
  Findings findings;
};

// `setting` is the line as the driver would find it.
Verdict judge(std::int32_t port, const termios& setting, const DriverSettings& settings,
              const LineSample& sample);

}  // namespace terminal
