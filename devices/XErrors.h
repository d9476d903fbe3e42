// X errors, which by Xlib's own rules would end the host process.
#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <type_traits>

namespace quorvel {

// Puts the driver's X error handlers on top of whatever handlers stand now. Errors of the driver's
// own calls stop there; every other error is passed on to the handlers that stood before. Opening
// an XConnection does this; call it also after anything else that installs handlers of its own,
// such as preparing GTK. Any thread, any number of times.
void installXErrorHandlers();

// What a thread does with SIGPIPE, which Xlib may raise once the server has gone.
enum class Sigpipe { kUnblocked, kBlocked };

// Runs `call(data)`, which talks to an X server, so that the process outlives its errors. Protocol
// errors are ignored. When the server goes away, the call is left where it stands by a longjmp, the
// display's descriptor is closed, and the result is false: the display must then never be used
// again, not even closed, and what Xlib had allocated is leaked. `call` must therefore hold no
// object with a destructor. Any thread; SIGPIPE is blocked meanwhile, which costs nothing where the
// thread says that it blocks the signal anyway. May be nested.
bool guardXCall(void (*call)(void* data), void* data, Sigpipe sigpipe);

template <typename Call>
bool guardXCall(Call&& call, Sigpipe sigpipe = Sigpipe::kUnblocked) {
  using Callable = std::remove_reference_t<Call>;
  return guardXCall([](void* data) { (*static_cast<Callable*>(data))(); },
                    const_cast<std::remove_const_t<Callable>*>(std::addressof(call)), sigpipe);
}

// Makes guarded calls on `display` outlive the loss of its server even where another handler of I/O
// errors has been put on top of the driver's and returns.
void leaveGuardedCallsOnLoss(Display* display);

// Counts a display that a toolkit has opened for the driver among the driver's own: its errors
// outside guarded calls are ignored, too. `lost` is called with `data`, on the thread that notices,
// when the server goes away. The display stays the toolkit's and is never closed.
void adoptDisplay(Display* display, XIOErrorExitHandler lost, void* data);

}  // namespace quorvel
