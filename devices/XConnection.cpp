#include "devices/XConnection.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <csetjmp>
#include <mutex>

namespace quorvel {
namespace {

// The handlers that stood before the driver's own, the latest last. Each is kept once: toolkits put
// theirs on and off all the time.
template <typename Handler>
class HandlersBelow {
 public:
  // Puts `own` on top with Xlib's function `set` and remembers what it replaced.
  void cover(Handler own, Handler (*set)(Handler)) {
    const Handler replaced = set(own);
    if (replaced == own) return;
    std::erase(handlers_, replaced);
    handlers_.push_back(replaced);
  }

  // The handler `depth` places below the driver's own; null when there is none left.
  Handler at(std::size_t depth) const {
    return depth < handlers_.size() ? handlers_[handlers_.size() - 1 - depth] : nullptr;
  }

 private:
  std::vector<Handler> handlers_;
};

struct ErrorRouting {
  std::mutex mutex;
  std::vector<Display*> own;
  HandlersBelow<XErrorHandler> protocol;
  HandlersBelow<XIOErrorHandler> connection;
};

// Never destroyed: Xlib may call the handlers until the process has ended.
ErrorRouting& errorRouting() {
  static ErrorRouting& routing = *new ErrorRouting;
  return routing;
}

// While a thread opens or closes a connection of the driver, its display is not among the own ones:
// the address is not known yet, or may at any moment be another's.
thread_local bool opensOrCloses = false;

// Where to go when a connection breaks that is being opened.
thread_local std::jmp_buf wayOutOfOpening;
thread_local bool opens = false;

// How many of the driver's handlers are running on this thread: a handler below that calls the one
// it replaced comes round to the driver's again, and is then sent one place further down.
thread_local std::size_t depth = 0;

class DepthStep {
 public:
  DepthStep() { ++depth; }
  ~DepthStep() { --depth; }
  DepthStep(const DepthStep&) = delete;
  DepthStep& operator=(const DepthStep&) = delete;
};

bool isOwn(Display* display) {
  if (opensOrCloses) return true;
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  return std::ranges::find(routing.own, display) != routing.own.end();
}

template <typename Handler>
Handler nextBelow(HandlersBelow<Handler> ErrorRouting::*below) {
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  return (routing.*below).at(depth);
}

int handleProtocolError(Display* display, XErrorEvent* error) {
  if (isOwn(display)) return 0;
  const XErrorHandler next = nextBelow(&ErrorRouting::protocol);
  if (!next) return 0;
  const DepthStep step;
  return next(display, error);
}

int handleConnectionError(Display* display) {
  if (opens) std::longjmp(wayOutOfOpening, 1);
  if (isOwn(display)) return 0;
  const XIOErrorHandler next = nextBelow(&ErrorRouting::connection);
  if (!next) return 0;
  const DepthStep step;
  return next(display);
}

// Xlib calls this in place of ending the process, with the display locked to this thread for good:
// another thread could not even close it.
void noteLoss(Display* display, void* lost) {
  XUnlockDisplay(display);
  *static_cast<std::atomic<bool>*>(lost) = true;
}

void initialiseXlibThreads() {
  static std::once_flag once;
  std::call_once(once, XInitThreads);
}

// Null when there is no display. When the server goes away meanwhile, Xlib would end the process as
// soon as its handler returns: it does not return, and what there is of the connection is given up.
Display* openDisplay() {
  Display* volatile display = nullptr;
  opensOrCloses = opens = true;
  if (setjmp(wayOutOfOpening) == 0) display = XOpenDisplay(nullptr);
  opensOrCloses = opens = false;
  return display;
}

}  // namespace

void installXErrorHandlers() {
  initialiseXlibThreads();
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  routing.protocol.cover(handleProtocolError, XSetErrorHandler);
  routing.connection.cover(handleConnectionError, XSetIOErrorHandler);
}

void adoptDisplay(Display* display, XIOErrorExitHandler lost, void* data) {
  XSetIOErrorExitHandler(display, lost, data);
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  routing.own.push_back(display);
}

XConnection XConnection::open() {
  installXErrorHandlers();
  XConnection connection;
  auto state = std::make_unique<State>();
  state->display = openDisplay();
  if (!state->display) return connection;
  connection.state_.reset(state.release());
  adoptDisplay(connection.get(), noteLoss, &connection.state_->lost);
  return connection;
}

void XConnection::Closer::operator()(State* state) const {
  const std::unique_ptr<State> owned(state);
  opensOrCloses = true;
  {
    ErrorRouting& routing = errorRouting();
    const std::lock_guard lock(routing.mutex);
    std::erase(routing.own, state->display);
  }
  XCloseDisplay(state->display);
  opensOrCloses = false;
}

XDeviceList::XDeviceList(const XConnection& connection)
    : devices_(XListInputDevices(connection.get(), &count_)) {
  if (!devices_) count_ = 0;
}

std::vector<std::string> atomNames(const XConnection& connection, std::span<const Atom> atoms) {
  std::vector<std::string> names(atoms.size());
  if (atoms.empty()) return names;
  std::vector<Atom> wanted(atoms.begin(), atoms.end());
  std::vector<char*> found(atoms.size(), nullptr);
  XGetAtomNames(connection.get(), wanted.data(), static_cast<int>(wanted.size()), found.data());
  for (std::size_t i = 0; i < found.size(); ++i) {
    const XOwned<char> name(found[i]);
    if (name) names[i] = name.get();
  }
  return names;
}

std::optional<Window> parentOf(const XConnection& connection, Window window) {
  Window root = None, parent = None, *children = nullptr;
  unsigned count = 0;
  const Status status = XQueryTree(connection.get(), window, &root, &parent, &children, &count);
  const XOwned<Window> owned(children);
  return status ? std::optional(parent) : std::nullopt;
}

CardinalProperty readCardinal(const XConnection& connection, Window window, Atom property) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0, left = 0;
  unsigned char* data = nullptr;
  const int status = XGetWindowProperty(connection.get(), window, property, 0, 1, False,
                                        XA_CARDINAL, &type, &format, &count, &left, &data);
  const XOwned<unsigned char> owned(data);
  CardinalProperty result = {.windowExists = status == Success, .value = {}};
  if (result.windowExists && type == XA_CARDINAL && format == 32 && count > 0) {
    // Xlib gives 32-bit numbers as longs, whatever the width of a long.
    result.value = *reinterpret_cast<const unsigned long*>(data);
  }
  return result;
}

}  // namespace quorvel
