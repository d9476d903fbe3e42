#include "tools/scanner/XTestKeyboard.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <stdexcept>

namespace terminal {
namespace {

class XTestKeyboard final : public VirtualKeyboard {
 public:
  XTestKeyboard() : display_(XOpenDisplay(nullptr)) {
    if (!display_) throw std::runtime_error("cannot open the display");
    int ignored = 0;
    if (!XTestQueryExtension(display_.get(), &ignored, &ignored, &ignored, &ignored)) {
      throw std::runtime_error("the display has no XTEST extension");
    }
  }

  void press(Key key) override { send(key, True); }
  void release(Key key) override { send(key, False); }

 private:
  void send(Key key, Bool down) {
    XTestFakeKeyEvent(display_.get(), static_cast<unsigned>(key), down, CurrentTime);
    XFlush(display_.get());
  }

  struct Closer {
    void operator()(Display* display) const { XCloseDisplay(display); }
  };
  std::unique_ptr<Display, Closer> display_;
};

}  // namespace

std::unique_ptr<VirtualKeyboard> connectXTestKeyboard() {
  return std::make_unique<XTestKeyboard>();
}

}  // namespace terminal
