#include "tools/host/HostWindow.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <unistd.h>

#include <stdexcept>

#include "tools/common/Language.h"

namespace terminal {
namespace {

constexpr Text kNoDisplayForWindow = {"there is no X display to show a window on",
                                      "нет X-дисплея, чтобы показать окно"};
constexpr unsigned kWidth = 480;
constexpr unsigned kHeight = 60;

}  // namespace

HostWindow::HostWindow(const std::string& title) {
  if (!display_) throw std::runtime_error(say(kNoDisplayForWindow));
  Display* const display = display_.get();
  const int screen = DefaultScreen(display);
  window_ = XCreateSimpleWindow(display, RootWindow(display, screen), 0, 0, kWidth, kHeight, 0, 0,
                                WhitePixel(display, screen));
  const long process = getpid();
  XChangeProperty(display, window_, XInternAtom(display, "_NET_WM_PID", False), XA_CARDINAL, 32,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(&process), 1);
  deleteWindow_ = XInternAtom(display, "WM_DELETE_WINDOW", False);
  XSetWMProtocols(display, window_, &deleteWindow_, 1);
  XWMHints hints = {};
  hints.flags = InputHint;
  hints.input = True;
  XSetWMHints(display, window_, &hints);
  // Select key presses only to consume them: unselected, they would go on to the parent window.
  XSelectInput(display, window_, KeyPressMask);
  show(title);
  XMapRaised(display, window_);
  XSync(display, False);
}

bool HostWindow::isClosed() {
  while (display_ && XEventsQueued(display_.get(), QueuedAfterReading) > 0) {
    XEvent event;
    XNextEvent(display_.get(), &event);
    isClosed_ = isClosed_ || (event.type == ClientMessage &&
                              static_cast<Atom>(event.xclient.data.l[0]) == deleteWindow_);
  }
  return isClosed_ || !display_;
}

void HostWindow::show(const std::string& text) {
  if (!display_) return;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  Display* const display = display_.get();
  for (const char* const property : {"_NET_WM_NAME", "WM_NAME"}) {
    XChangeProperty(display, window_, XInternAtom(display, property, False),
                    XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace, bytes,
                    static_cast<int>(text.size()));
  }
  XFlush(display);
}

}  // namespace terminal
