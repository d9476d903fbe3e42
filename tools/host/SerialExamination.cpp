#include "tools/host/SerialExamination.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "util/Handles.h"

namespace terminal {
namespace {

struct Speed {
  int bitsPerSecond;
  speed_t code;
};
constexpr Speed kSpeeds[] = {
    {110, B110},       {300, B300},       {600, B600},       {1200, B1200},    {2400, B2400},
    {4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},  {57600, B57600},
    {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600}};

std::vector<gid_t> ownGroups() {
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
  groups.resize(static_cast<std::size_t>(
      std::max(0, getgroups(static_cast<int>(groups.size()), groups.data()))));
  groups.push_back(getegid());
  return groups;
}

// The groups that the user has at the next login.
std::vector<gid_t> groupsAtLogin() {
  const passwd* const user = getpwuid(geteuid());
  if (!user) return {};
  int count = 256;
  std::vector<gid_t> groups(static_cast<std::size_t>(count));
  if (getgrouplist(user->pw_name, user->pw_gid, groups.data(), &count) < 0) return {};
  groups.resize(static_cast<std::size_t>(count));
  return groups;
}

bool contains(const std::vector<gid_t>& groups, gid_t group) {
  return std::find(groups.begin(), groups.end(), group) != groups.end();
}

void findReaders(const struct stat& file, SerialExamination& port) {
  if (!(file.st_mode & S_IRGRP) || contains(ownGroups(), file.st_gid)) return;
  const group* const readers = getgrgid(file.st_gid);
  port.readersGroup = readers ? readers->gr_name : std::to_string(file.st_gid);
  port.hasToLogIn = contains(groupsAtLogin(), file.st_gid);
}

}  // namespace

SerialExamination examinePort(const std::string& file) {
  SerialExamination port;
  struct stat device;
  if (stat(file.c_str(), &device) != 0) {
    if (errno == EACCES) port.access = PortAccess::kDenied;
    return port;
  }
  port.access = PortAccess::kNotALine;
  if (!S_ISCHR(device.st_mode)) return port;
  const quorvel::FileDescriptor line(
      open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  const int error = errno;
  if (!line && (error == EACCES || error == EPERM)) {
    port.access = PortAccess::kDenied;
    findReaders(device, port);
    return port;
  }
  port.isExclusive = !line && error == EBUSY;
  termios setting;
  if (line && tcgetattr(line.get(), &setting) == 0) port.setting = setting;
  if (!port.setting && !port.isExclusive) return port;
  port.access = PortAccess::kOk;
  port.holders = holdersOf(device);
  return port;
}

LineKind kindOf(const termios& setting) {
  constexpr tcflag_t kChangesInput =
      ICRNL | INLCR | IGNCR | IXON | IXOFF | ISTRIP | BRKINT | INPCK | PARMRK;
  constexpr tcflag_t kActsOnInput = ECHO | ECHONL | ISIG | IEXTEN;
  if (!(setting.c_lflag & ICANON)) return LineKind::kRaw;
  const bool passesThrough =
      !(setting.c_iflag & kChangesInput) && !(setting.c_lflag & kActsOnInput);
  const bool hasEnd = setting.c_cc[VEOL] != _POSIX_VDISABLE;
  return passesThrough && hasEnd ? LineKind::kFramed : LineKind::kCooked;
}

std::optional<int> speedOf(const termios& setting) {
  for (const Speed& speed : kSpeeds) {
    if (speed.code == cfgetispeed(&setting)) return speed.bitsPerSecond;
  }
  return std::nullopt;
}

std::optional<speed_t> speedCode(int bitsPerSecond) {
  for (const Speed& speed : kSpeeds) {
    if (speed.bitsPerSecond == bitsPerSecond) return speed.code;
  }
  return std::nullopt;
}

const char* nameOf(LineKind kind) {
  switch (kind) {
    case LineKind::kFramed:
      return "framed";
    case LineKind::kRaw:
      return "raw";
    case LineKind::kCooked:
      return "cooked";
  }
  return "";
}

}  // namespace terminal
