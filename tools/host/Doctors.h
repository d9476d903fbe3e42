// The examinations that doctor makes.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "tools/common/EndSignals.h"
#include "tools/host/Diagnosis.h"
#include "tools/host/DriverSettings.h"

namespace terminal {

// `patience` is how long to wait for a scan; zero waits for none.
Diagnosis examineSerial(std::int32_t port, const DriverSettings& settings,
                        std::chrono::seconds patience, const EndSignals& end);

// The keyboard by its name in the form.
Diagnosis examineKeyboard(const std::string& formName, const DriverSettings& settings,
                          std::chrono::seconds patience, const EndSignals& end);

// Asks the user for a scan, on the error output: once, or, where that is a terminal, with the time
// that is left. Ends its line when it goes.
class ScanRequest {
 public:
  ScanRequest();
  ~ScanRequest();
  ScanRequest(const ScanRequest&) = delete;
  ScanRequest& operator=(const ScanRequest&) = delete;

  void show(std::chrono::seconds left);

 private:
  const bool isTerminal_;
  std::chrono::seconds shown_{-1};
};

}  // namespace terminal
