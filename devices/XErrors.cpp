#include "devices/XErrors.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <ctime>
#include <mutex>
#include <optional>
#include <vector>

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

  // The handler `depth` places below the driver's own; null when there are no more.
  Handler at(std::size_t depth) const {
    return depth < handlers_.size() ? handlers_[handlers_.size() - 1 - depth] : nullptr;
  }

 private:
  std::vector<Handler> handlers_;
};

struct ErrorRouting {
  std::mutex mutex;
  std::vector<Display*> adopted;
  HandlersBelow<XErrorHandler> protocol;
  HandlersBelow<XIOErrorHandler> connection;
};

// Never destroyed: Xlib may call the handlers until the process has ended.
ErrorRouting& errorRouting() {
  static ErrorRouting& routing = *new ErrorRouting;
  return routing;
}

struct GuardedCall {
  std::jmp_buf wayOut;
  Display* volatile lost;  // set before the jump
};

struct ThreadState {
  GuardedCall* call = nullptr;  // the innermost that is running
  // How many of the driver's handlers are running: a replaced handler may call the one it replaced,
  // which is ours; each re-entry goes one handler deeper.
  std::size_t depth = 0;
};

// Initial-exec, because the C library aborts when it finds no memory for a variable that it
// allocates on first use.
[[gnu::tls_model("initial-exec")]] constinit thread_local ThreadState threadState;

// Gives a variable another value for as long as this object lives.
template <typename T>
class Scoped {
 public:
  Scoped(T& variable, T value) : variable_(variable), before_(variable) { variable = value; }
  ~Scoped() { variable_ = before_; }
  Scoped(const Scoped&) = delete;
  Scoped& operator=(const Scoped&) = delete;

 private:
  T& variable_;
  T before_;
};

class SigpipeBlock {
 public:
  SigpipeBlock() {
    sigemptyset(&sigpipe_);
    sigaddset(&sigpipe_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &sigpipe_, &before_);
  }
  ~SigpipeBlock() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SigpipeBlock(const SigpipeBlock&) = delete;
  SigpipeBlock& operator=(const SigpipeBlock&) = delete;

  // Takes the pending signal away, if there is one.
  void discardPending() const {
    const timespec now = {};
    while (sigtimedwait(&sigpipe_, nullptr, &now) == -1 && errno == EINTR) {
    }
  }

 private:
  sigset_t sigpipe_;
  sigset_t before_;
};

void leaveGuardedCall(Display* display) {
  GuardedCall* const call = threadState.call;
  if (!call) return;
  call->lost = display;
  std::longjmp(call->wayOut, 1);
}

bool isOwn(Display* display) {
  if (threadState.call) return true;
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  return std::ranges::find(routing.adopted, display) != routing.adopted.end();
}

template <typename Handler>
Handler nextBelow(HandlersBelow<Handler> ErrorRouting::*below) {
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  return (routing.*below).at(threadState.depth);
}

int handleProtocolError(Display* display, XErrorEvent* error) {
  if (isOwn(display)) return 0;
  const XErrorHandler next = nextBelow(&ErrorRouting::protocol);
  if (!next) return 0;
  const Scoped deeper(threadState.depth, threadState.depth + 1);
  return next(display, error);
}

int handleConnectionError(Display* display) {
  leaveGuardedCall(display);
  if (isOwn(display)) return 0;
  const XIOErrorHandler next = nextBelow(&ErrorRouting::connection);
  if (!next) return 0;
  const Scoped deeper(threadState.depth, threadState.depth + 1);
  return next(display);
}

void initialiseXlibThreads() {
  static std::once_flag once;
  std::call_once(once, XInitThreads);
}

}  // namespace

void installXErrorHandlers() {
  initialiseXlibThreads();
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  routing.protocol.cover(handleProtocolError, XSetErrorHandler);
  routing.connection.cover(handleConnectionError, XSetIOErrorHandler);
}

// Xlib exits when a handler of I/O errors returns, and where it does not exit it goes on with a
// connection that is gone: only a jump leaves it safely.
bool guardXCall(void (*call)(void*), void* data, Sigpipe sigpipe) {
  std::optional<SigpipeBlock> block;
  if (sigpipe == Sigpipe::kUnblocked) block.emplace();
  GuardedCall guarded = {};
  const Scoped running(threadState.call, &guarded);
  if (setjmp(guarded.wayOut) == 0) {
    call(data);
    return true;
  }
  close(ConnectionNumber(guarded.lost));
  if (block) block->discardPending();
  return false;
}

void leaveGuardedCallsOnLoss(Display* display) {
  XSetIOErrorExitHandler(
      display, [](Display* lost, void*) { leaveGuardedCall(lost); }, nullptr);
}

void adoptDisplay(Display* display, XIOErrorExitHandler lost, void* data) {
  XSetIOErrorExitHandler(display, lost, data);
  ErrorRouting& routing = errorRouting();
  const std::lock_guard lock(routing.mutex);
  routing.adopted.push_back(display);
}

}  // namespace quorvel
