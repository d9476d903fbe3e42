#include "tools/host/DeviceHolders.h"

#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace terminal {
namespace {

namespace fs = std::filesystem;

// Pseudo terminals have the same numbers in every instance of their file system.
bool isPseudoTerminal(dev_t device) { return major(device) >= 136 && major(device) <= 143; }

bool isOpenIn(const fs::path& process, const struct stat& device) {
  std::error_code error;
  fs::directory_iterator entry(process / "fd", error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    struct stat open;
    if (stat(entry->path().c_str(), &open) != 0 || !S_ISCHR(open.st_mode)) continue;
    if (open.st_rdev != device.st_rdev) continue;
    if (!isPseudoTerminal(device.st_rdev) || open.st_dev == device.st_dev) return true;
  }
  return false;
}

std::string programOf(const fs::path& process) {
  std::string name;
  std::getline(std::ifstream(process / "comm"), name);
  return name;
}

}  // namespace

std::vector<Holder> holdersOf(const struct stat& device) {
  std::vector<Holder> holders;
  std::error_code error;
  fs::directory_iterator entry("/proc", error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const pid_t process = std::atoi(entry->path().filename().c_str());
    if (process <= 0 || process == getpid() || !isOpenIn(entry->path(), device)) continue;
    holders.push_back({process, programOf(entry->path())});
  }
  std::sort(holders.begin(), holders.end(),
            [](const Holder& one, const Holder& other) { return one.process < other.process; });
  return holders;
}

}  // namespace terminal
