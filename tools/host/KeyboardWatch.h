// Listens at a keyboard from outside the component.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "tools/common/EndSignals.h"
#include "tools/host/DriverSettings.h"
#include "tools/host/Findings.h"
#include "tools/host/XDisplay.h"

namespace terminal {

// What came from a keyboard up to the end of a scan, or until it fell silent.
struct KeySample {
  std::string bytes;                // as the component reads them, the end included
  bool hasEnd = false;              // the end byte came
  bool isForeign = false;           // a key typed another character than on a US keyboard
  std::optional<int> separatorKey;  // what stands for a group separator and is not taken for one:
                                    // the value of GSSymbolKey that fits
  Findings focus;                   // where the focus was at the first key
};

// Takes the keyboard for itself, so that a scan is typed nowhere else, and waits for a scan, at
// most this long. `waiting` is called about once a second with the time that is left.
KeySample takeKeys(XDisplay& display, int device, const DriverSettings& settings,
                   std::chrono::milliseconds patience, const EndSignals& end,
                   const std::function<void(std::chrono::seconds left)>& waiting);

}  // namespace terminal
