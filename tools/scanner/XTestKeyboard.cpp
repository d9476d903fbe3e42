#include "tools/scanner/XTestKeyboard.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <stdexcept>

#include "tools/common/Language.h"

namespace terminal {
namespace {

constexpr Text kNoDisplay = {"cannot open the display", "не удалось открыть X-дисплей"};
constexpr Text kNoXTest = {"the display has no XTEST extension",
                           "у X-дисплея нет расширения XTEST"};

class XTestKeyboard final : public VirtualKeyboard {
 public:
  XTestKeyboard() : display_(XOpenDisplay(nullptr)) {
    if (!display_) throw std::runtime_error(say(kNoDisplay));
    int ignored = 0;
    if (!XTestQueryExtension(display_.get(), &ignored, &ignored, &ignored, &ignored)) {
      throw std::runtime_error(say(kNoXTest));
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
