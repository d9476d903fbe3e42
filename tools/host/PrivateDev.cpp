#include "tools/host/PrivateDev.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace terminal {
namespace {

// In a new user namespace the user is nobody until mapped.
bool mapUser(uid_t user, gid_t group) {
  std::ofstream("/proc/self/setgroups") << "deny";
  const auto map = [](const char* file, unsigned id) {
    std::ofstream mapping(file);
    mapping << "0 " << id << " 1" << std::flush;
    return mapping.good();
  };
  return map("/proc/self/uid_map", user) && map("/proc/self/gid_map", group);
}

// Root needs no user namespace.
bool enterNamespaces() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(CLONE_NEWNS) == 0) return true;
  return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && mapUser(user, group);
}

bool makeDev() {
  constexpr unsigned long kQuiet = MS_NOSUID | MS_NOEXEC;
  if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
  if (mount("tmpfs", "/dev", "tmpfs", MS_NOSUID, "mode=0755") != 0) return false;
  return mkdir("/dev/pts", 0755) == 0 &&
         mount("devpts", "/dev/pts", "devpts", kQuiet, "newinstance,ptmxmode=0666") == 0 &&
         symlink("pts/ptmx", "/dev/ptmx") == 0;
}

}  // namespace

bool enterPrivateDev() { return enterNamespaces() && makeDev(); }

}  // namespace terminal
