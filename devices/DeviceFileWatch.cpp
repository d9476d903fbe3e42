#include "devices/DeviceFileWatch.h"

#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include "util/Handles.h"

namespace quorvel {
namespace {

constexpr std::uint32_t kAppeared = IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t kPermitted = IN_ATTRIB;

}  // namespace

struct DeviceFileWatch::Shared {
  void add(DeviceFileWatch* watch);
  void remove(DeviceFileWatch* watch);
  // Hands what has happened to those whose files it happened to.
  void readEvents();
  void handOut(const inotify_event& event) const;

  std::mutex mutex;
  FileDescriptor inotify;
  int folder = -1;  // inotify's number for /dev, while anyone watches
  std::vector<DeviceFileWatch*> watches;
};

DeviceFileWatch::Shared& DeviceFileWatch::shared() {
  // Never destroyed: readers may still be running while the process exits.
  static auto& shared = *new Shared;
  return shared;
}

void DeviceFileWatch::Shared::add(DeviceFileWatch* watch) {
  watches.push_back(watch);
  if (!inotify) inotify = notStandardInput(FileDescriptor(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)));
  if (inotify && folder < 0) {
    folder = inotify_add_watch(inotify.get(), "/dev", kAppeared | kPermitted);
  }
}

void DeviceFileWatch::Shared::remove(DeviceFileWatch* watch) {
  std::erase(watches, watch);
  if (!watches.empty() || folder < 0) return;
  inotify_rm_watch(inotify.get(), std::exchange(folder, -1));
  // What nobody asks for any more is not to wait for the next one who does.
  readEvents();
}

void DeviceFileWatch::Shared::readEvents() {
  alignas(inotify_event) char buffer[4096];
  for (ssize_t got; (got = ::read(inotify.get(), buffer, sizeof buffer)) > 0;) {
    for (const char* next = buffer; next < buffer + got;) {
      const auto& event = *reinterpret_cast<const inotify_event*>(next);
      handOut(event);
      next += sizeof event + event.len;
    }
  }
}

void DeviceFileWatch::Shared::handOut(const inotify_event& event) const {
  // The kernel dropped events: any file may have appeared.
  const bool overflow = event.mask & IN_Q_OVERFLOW;
  if (!overflow && event.len == 0) return;
  for (DeviceFileWatch* watch : watches) {
    if (!overflow && watch->name_ != event.name) continue;
    watch->events_ |= overflow ? kAppeared : event.mask;
    eventfd_write(watch->wake_, 1);
  }
}

DeviceFileWatch::DeviceFileWatch(std::string name, int wake) : name_(std::move(name)), wake_(wake) {
  const std::lock_guard lock(shared().mutex);
  shared().add(this);
}

DeviceFileWatch::~DeviceFileWatch() {
  const std::lock_guard lock(shared().mutex);
  shared().remove(this);
}

int DeviceFileWatch::descriptor() const {
  const std::lock_guard lock(shared().mutex);
  return shared().folder < 0 ? -1 : shared().inotify.get();
}

DeviceFileWatch::Changes DeviceFileWatch::takeChanges() {
  const std::lock_guard lock(shared().mutex);
  if (shared().inotify) shared().readEvents();
  const std::uint32_t events = std::exchange(events_, 0);
  return {.appeared = (events & kAppeared) != 0, .permitted = (events & kPermitted) != 0};
}

}  // namespace quorvel
