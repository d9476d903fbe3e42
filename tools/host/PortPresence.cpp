#include <poll.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "tools/host/DevicePresence.h"
#include "tools/host/PortFile.h"

namespace terminal {
namespace {

bool isSameDevice(const struct stat& one, const struct stat& other) {
  return S_ISCHR(one.st_mode) && S_ISCHR(other.st_mode) && one.st_dev == other.st_dev &&
         one.st_ino == other.st_ino && one.st_rdev == other.st_rdev;
}

bool hasHungUp(int descriptor) {
  pollfd line = {descriptor, 0, 0};
  return poll(&line, 1, 0) > 0 && (line.revents & POLLHUP) != 0;
}

// Whether a descriptor of this process leads to the device and is alive. The component opens and
// closes its descriptors meanwhile, so each is only looked at.
bool isOpenHere(const struct stat& device) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
    const int descriptor = std::atoi(entry.path().filename().c_str());
    struct stat open;
    if (fstat(descriptor, &open) == 0 && isSameDevice(open, device) && !hasHungUp(descriptor)) {
      return true;
    }
  }
  return false;
}

class PortPresence final : public DevicePresence {
 public:
  explicit PortPresence(std::string file) : file_(std::move(file)) {}

  std::string identity() override {
    struct stat link;
    struct stat device;
    if (lstat(file_.c_str(), &link) != 0 || stat(file_.c_str(), &device) != 0) return {};
    if (!isOpenHere(device)) return {};
    return std::to_string(link.st_ino) + '/' + std::to_string(device.st_ino);
  }

 private:
  const std::string file_;
};

}  // namespace

std::unique_ptr<DevicePresence> presenceOfPort(std::int32_t port) {
  return std::make_unique<PortPresence>(portFile(port));
}

}  // namespace terminal
