#include <memory>
#include <string>
#include <utility>

#include "tools/host/DevicePresence.h"
#include "tools/host/XDisplay.h"

namespace terminal {
namespace {

class KeyboardPresence final : public DevicePresence {
 public:
  explicit KeyboardPresence(std::string formName) : formName_(std::move(formName)) { look(); }

  std::string identity() override {
    if (!display_) return {};
    if (display_.devicesMayHaveChanged()) look();
    return display_ ? identity_ : std::string();
  }

 private:
  // Among several of one name the component reads the last one.
  void look() {
    identity_.clear();
    for (const XInputDevice& device : display_.devices()) {
      if (device.name != formName_) continue;
      identity_ = device.isEnabled ? std::to_string(device.id) : std::string();
    }
  }

  XDisplay display_;
  const std::string formName_;
  std::string identity_;
};

}  // namespace

std::unique_ptr<DevicePresence> presenceOfKeyboard(const std::string& formName) {
  return std::make_unique<KeyboardPresence>(formName);
}

}  // namespace terminal
