// What listen says on its error output beside the scans.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "tools/host/DeviceOptions.h"
#include "tools/host/DevicePresence.h"
#include "tools/host/Findings.h"

namespace terminal {

// Writes one line, made safe to show, to the error output.
void tell(const std::string& message);

// Looks at the device from outside the component and warns of what may keep scans from arriving.
// What may keep the device from being opened is returned.
Findings examine(const DeviceOptions& device);

// Tells why the device was not opened: the component's text, which says no more than that, and
// beneath it what stands in the way.
void tellFailure(const std::string& componentText, const Findings& reasons);

// Tells when the device goes and when it is back.
class PresenceTeller {
 public:
  // Before the component opens the device.
  explicit PresenceTeller(const DeviceOptions& device);

  // Takes the device as it is now for the one that was opened.
  void begin() { identity_ = presence_->identity(); }

  void look();

 private:
  const std::string name_;
  const std::unique_ptr<DevicePresence> presence_;
  std::string identity_;
};

// Tells once, after a while without any scan, how to find out why.
class SilenceHint {
 public:
  explicit SilenceHint(const DeviceOptions& device) : device_(device) {}

  void drop() { isDue_ = false; }
  void look();

 private:
  static constexpr std::chrono::seconds kLongSilence{5};

  const DeviceOptions& device_;
  const std::chrono::steady_clock::time_point time_ =
      std::chrono::steady_clock::now() + kLongSilence;
  bool isDue_ = true;
};

}  // namespace terminal
