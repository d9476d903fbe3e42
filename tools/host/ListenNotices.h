// What listen reports on standard error.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "tools/host/DeviceOptions.h"
#include "tools/host/DevicePresence.h"
#include "tools/host/Findings.h"

namespace terminal {

// Writes one line to standard error, made safe to show.
void tell(const std::string& message);

// Examines the device without the component, and warns of anything that may keep scans from
// arriving. Returns what may keep the device from being opened.
Findings examine(const DeviceOptions& device);

// Reports that the device was not opened: the component's message, which gives no reason, and then
// the reasons.
void tellFailure(const std::string& componentText, const Findings& reasons);

// Reports when the device disappears and when it returns.
class PresenceTeller {
 public:
  // Must be made before the component opens the device.
  explicit PresenceTeller(const DeviceOptions& device);

  // The device present now is the one that was opened.
  void begin() { identity_ = presence_->identity(); }

  void look();

 private:
  const std::string name_;
  const std::unique_ptr<DevicePresence> presence_;
  std::string identity_;
};

// Warns of the messages that the driver has dropped since the last call.
void tellDroppedMessages();

// Says once, after a while without a scan, how to find out why.
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
