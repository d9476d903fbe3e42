#include "tests/rig/KeysLookedAt.h"

#include <X11/Xlib.h>
#include <X11/extensions/XI2.h>
#include <dlfcn.h>

#include <condition_variable>
#include <mutex>

#include "tests/rig/Patience.h"

namespace rig {
namespace {

std::mutex mutex;
std::condition_variable changed;
unsigned lookedAt = 0;

void countOne() {
  const std::lock_guard lock(mutex);
  ++lookedAt;
  changed.notify_all();
}

}  // namespace

void countKeysLookedAt() {
  const std::lock_guard lock(mutex);
  lookedAt = 0;
}

bool awaitKeysLookedAt(unsigned count) {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, kPatience, [count] { return lookedAt >= count; });
}

}  // namespace rig

// The driver frees the data of every key event last, whatever it has done with the key.
extern "C" __attribute__((visibility("default"))) void XFreeEventData(Display* display,
                                                                      XGenericEventCookie* cookie) {
  static const auto freeEventData =
      reinterpret_cast<decltype(&XFreeEventData)>(dlsym(RTLD_NEXT, "XFreeEventData"));
  const bool key = cookie->evtype == XI_KeyPress || cookie->evtype == XI_KeyRelease;
  freeEventData(display, cookie);
  if (key) rig::countOne();
}
