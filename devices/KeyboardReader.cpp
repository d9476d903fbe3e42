#include "devices/KeyboardReader.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <iterator>

#include "devices/XQueries.h"
#include "util/Base64.h"
#include "util/CodePages.h"
#include "util/Log.h"
#include "util/PosixThread.h"
#include "util/ScopedWipe.h"

namespace quorvel {

bool KeyboardReader::open(const InputDeviceKeyboardFactory& factory) {
  hostSignals_ = SignalMask::current();
  stop_ = FileDescriptor(eventfd(0, EFD_CLOEXEC));
  connection_ = XConnection::open();
  if (!stop_ || !connection_) return false;
  keyboard_.emplace(connection_, factory);
  message_.emplace(factory, connection_);
  focus_.emplace(connection_);
  return keyboard_->take() && !connection_.lost();
}

void KeyboardReader::stop() {
  running_ = false;
  if (stop_) eventfd_write(stop_.get(), 1);
  if (thread_ == std::this_thread::get_id()) release();
}

void KeyboardReader::ReadThread() {
  struct Release {
    ~Release() {
      reader.release();
      reader.thread_ = std::thread::id();
    }
    KeyboardReader& reader;
  };
  const Release release{*this};
  thread_ = std::this_thread::get_id();
  // As it blocks every signal that is no fault.
  connection_.setSigpipe(Sigpipe::kBlocked);
  while (running_ && !connection_.lost()) {
    dropExceptions([this] { readOnce(); });
  }
  dropExceptions([] { log(std::string(115, '-')); });
}

void KeyboardReader::release() {
  // From here on the thread may run with the host's signal mask.
  connection_.setSigpipe(Sigpipe::kUnblocked);
  keyboard_->release();
}

void KeyboardReader::readOnce() {
  XEvent event;
  if (nextEvent(event)) {
    handle(event);
  } else {
    waitForInput();
  }
}

bool KeyboardReader::nextEvent(XEvent& event) const {
  bool taken = false;
  connection_.call([&](Display* display) {
    taken = XPending(display) > 0;
    if (taken) XNextEvent(display, &event);
  });
  return taken;
}

// Without a timeout, as a rule: waking up every millisecond to look at the flag would cost more
// than a hundredth of a core for as long as the host runs.
void KeyboardReader::waitForInput() {
  if (connection_.lost()) return;
  pollfd waits[] = {{.fd = ConnectionNumber(connection_.get()), .events = POLLIN, .revents = 0},
                    {.fd = stop_.get(), .events = POLLIN, .revents = 0}};
  const auto retryInterval = keyboard_->retryInterval();
  const int timeout = retryInterval ? static_cast<int>(retryInterval->count()) : -1;
  if (poll(waits, std::size(waits), timeout) == 0) keyboard_->retry();
}

void KeyboardReader::handle(XEvent& event) {
  const XEventData data(connection_, event);
  const int inputExtension = keyboard_->inputExtension();
  if (const auto* key = data.as<XIDeviceEvent>(inputExtension, XI_KeyPress)) {
    if (keyboard_->accepts(*key)) handleKey(*key);
  } else if (!data.as<XIDeviceEvent>(inputExtension, XI_KeyRelease)) {
    const auto* change = data.as<XIHierarchyEvent>(inputExtension, XI_HierarchyChanged);
    focus_->handle(event);
    if (change) handleHierarchy(*change);
  }
}

void KeyboardReader::handleHierarchy(const XIHierarchyEvent& change) {
  bool interrupted = true;
  dropExceptions([&] { interrupted = keyboard_->handle(change); });
  if (interrupted) message_->drop();
}

void KeyboardReader::handleKey(const XIDeviceEvent& key) {
  bool ignored = false;
  if (!dropExceptions([&] { ignored = focus_->belongsToAnotherProcess(); })) message_->dropToEnd();
  if (ignored) return;
  std::optional<std::string> message = message_->add(key);
  if (!message) return;
  const ScopedWipe wipe(*message);
  deliver(*message);
}

void KeyboardReader::deliver(const std::string& message) const {
  std::string base64 = raw2Base64(message);
  const ScopedWipe wipeBase64(base64);
  std::wstring data = ConvertUTF8Input(base64.c_str());
  const ScopedWipe wipeData(data);
  const ScopedSignalMask hostSignals(*hostSignals_);
  callback_(data);
}

}  // namespace quorvel
