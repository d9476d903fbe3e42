#include "dialog/DeviceWatch.h"

#include <X11/Xlib.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <optional>
#include <utility>

#include "devices/KeyboardList.h"
#include "devices/SerialFamilies.h"
#include "dialog/GtkFunctions.h"
#include "util/PosixThread.h"

namespace quorvel {
namespace {

constexpr std::uint32_t kAppeared = IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t kPermissionsChanged = IN_ATTRIB;

// The port number of a file in /dev, if it belongs to a serial port.
std::optional<std::uint32_t> portOf(std::string_view file) {
  for (const SerialFamily& family : kSerialFamilies) {
    if (!file.starts_with(family.prefix)) continue;
    const std::string_view digits = file.substr(family.prefix.size());
    std::uint16_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) return {};
    const std::uint32_t port = family.firstPort() + number;
    // Numbers that do not fit into the family's range belong to the next.
    if (serialFamilyOf(port).prefix == family.prefix) return port;
  }
  return {};
}

}  // namespace

DeviceWatch::DeviceWatch(std::function<void(std::uint32_t)> portAppeared,
                         std::function<void()> keyboardsChanged)
    : portAppeared_(std::move(portAppeared)), keyboardsChanged_(std::move(keyboardsChanged)) {
  watchFiles();
  watchServer();
}

DeviceWatch::~DeviceWatch() {
  if (filesSource_ != 0) g_source_remove(filesSource_);
  if (serverSource_ != 0) g_source_remove(serverSource_);
}

void DeviceWatch::watchFiles() {
  files_ = FileDescriptor(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  if (!files_) return;
  if (inotify_add_watch(files_.get(), "/dev", kAppeared | kPermissionsChanged) < 0) return;
  filesSource_ = g_unix_fd_add(files_.get(), G_IO_IN, onFiles, this);
}

gboolean DeviceWatch::onFiles(gint, GIOCondition, gpointer data) {
  auto& watch = *static_cast<DeviceWatch*>(data);
  alignas(inotify_event) std::array<char, 4096> buffer;
  const ssize_t size = read(watch.files_.get(), buffer.data(), buffer.size());
  for (ssize_t at = 0; at < size;) {
    inotify_event event;
    std::memcpy(&event, buffer.data() + at, sizeof event);
    const char* const name = buffer.data() + at + sizeof event;
    if (event.len > 0) watch.noticeFile(name, (event.mask & kAppeared) != 0);
    at += static_cast<ssize_t>(sizeof event + event.len);
  }
  return G_SOURCE_CONTINUE;
}

// The permissions of a new file are often set a moment later. A file that was there before is none
// of this watch's business.
void DeviceWatch::noticeFile(std::string_view name, bool isNew) {
  const std::optional<std::uint32_t> port = portOf(name);
  if (!port) return;
  dropExceptions([&] {
    if (isNew) appeared_.insert(*port);
    if (appeared_.count(*port) != 0) portAppeared_(*port);
  });
}

void DeviceWatch::watchServer() {
  server_ = XConnection::open();
  selectHierarchyEvents(server_);
  if (!server_.call([](Display* display) { XSync(display, False); })) return;
  serverSource_ = g_unix_fd_add(ConnectionNumber(server_.get()), G_IO_IN, onServer, this);
}

gboolean DeviceWatch::onServer(gint, GIOCondition, gpointer data) {
  auto& watch = *static_cast<DeviceWatch*>(data);
  if (watch.readServer()) return G_SOURCE_CONTINUE;
  watch.serverSource_ = 0;
  return G_SOURCE_REMOVE;
}

// False when the server has gone away.
bool DeviceWatch::readServer() {
  bool changed = false;
  const bool isThere = server_.call([&](Display* display) {
    while (XPending(display) > 0) {
      XEvent event;
      XNextEvent(display, &event);
      changed = true;
    }
  });
  if (changed) dropExceptions(keyboardsChanged_);
  return isThere;
}

}  // namespace quorvel
