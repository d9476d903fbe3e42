// Notices devices that are plugged in while the test window is open.
#pragma once

#include <glib.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string_view>

#include "devices/XConnection.h"
#include "util/Handles.h"

namespace quorvel {

// Watches /dev and the X server for as long as it exists. Where there is no inotify or no X server,
// nothing is noticed. GTK thread, once GTK has been opened.
class DeviceWatch {
 public:
  // The main loop calls `portAppeared` with the port number of a serial port whose file has
  // appeared, and again when the file's permissions change; and `keyboardsChanged` when the X
  // server has added, removed, enabled or disabled a device. What they throw is dropped.
  DeviceWatch(std::function<void(std::uint32_t port)> portAppeared,
              std::function<void()> keyboardsChanged);
  ~DeviceWatch();
  DeviceWatch(const DeviceWatch&) = delete;
  DeviceWatch& operator=(const DeviceWatch&) = delete;

 private:
  static gboolean onFiles(gint descriptor, GIOCondition condition, gpointer watch);
  static gboolean onServer(gint descriptor, GIOCondition condition, gpointer watch);
  void watchFiles();
  void watchServer();
  bool readServer();
  void noticeFile(std::string_view name, bool isNew);

  const std::function<void(std::uint32_t)> portAppeared_;
  const std::function<void()> keyboardsChanged_;
  FileDescriptor files_;  // an inotify instance
  XConnection server_;
  guint filesSource_ = 0;  // 0: not watched
  guint serverSource_ = 0;
  std::set<std::uint32_t> appeared_;
};

}  // namespace quorvel
