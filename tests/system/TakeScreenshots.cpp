// Takes the screenshot of the test window for the documentation, with rows from all kinds of devices. Run it in a private /dev, as the tests are, with the output folder.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/rig/Program.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/XServer.h"

namespace {

struct PixbufUnref {
  void operator()(GdkPixbuf* picture) const { g_object_unref(picture); }
};
using Picture = std::unique_ptr<GdkPixbuf, PixbufUnref>;

// The window as it is on the screen now, with the window manager's frame.
Picture grab(const rig::TestWindow& window) {
  GdkRectangle frame;
  gdk_window_get_frame_extents(gtk_widget_get_window(GTK_WIDGET(window.dialog())), &frame);
  return Picture(gdk_pixbuf_get_from_drawable(nullptr, gdk_get_default_root_window(), nullptr,
                                              frame.x, frame.y, 0, 0, frame.width, frame.height));
}

bool areEqual(GdkPixbuf* one, GdkPixbuf* other) {
  return gdk_pixbuf_get_byte_length(one) == gdk_pixbuf_get_byte_length(other) &&
         std::equal(gdk_pixbuf_read_pixels(one),
                    gdk_pixbuf_read_pixels(one) + gdk_pixbuf_get_byte_length(one),
                    gdk_pixbuf_read_pixels(other));
}

// The window once it and its frame have been drawn, that is, once nothing changes any more.
Picture grabAtRest(const rig::TestWindow& window) {
  constexpr int kSame = 5;
  Picture picture = grab(window);
  for (int same = 0; same < kSame;) {
    window.run(std::chrono::milliseconds(100));
    Picture next = grab(window);
    same = areEqual(picture.get(), next.get()) ? same + 1 : 0;
    picture = std::move(next);
  }
  return picture;
}

void takePicture(rig::XServer& server, const std::string& library, const std::string& file) {
  setenv("DISPLAY", server.display().c_str(), 1);
  const rig::Program manager({"matchbox-window-manager", "-use_titlebar", "yes"});
  const auto com = rig::scannerAt("/dev/ttyS0");
  const auto acm = rig::scannerAt("/dev/ttyACM0");
  const auto usb = rig::scannerAt("/dev/ttyUSB0");
  terminal::ComponentLibrary component(library);
  terminal::Component driver(component, u"InputDevice");
  rig::visitWindow(driver, [&](rig::TestWindow& window) {
    std::size_t rows = 0;
    const auto scan = [&](auto&& send) {
      send();
      window.awaitRows(++rows);
    };
    scan([&] { com->send("4600051000057\r"); });
    scan([&] {
      acm->send(
          "]C1010460005100005710ABC123\x1D"
          "21A7\r");
    });
    scan([&] { usb->send(";4000001234567899=30121010000000000000?\r"); });
    scan([&] { terminal::type(server.keyboard(0), "9785170983551\r"); });
    scan([&] { acm->send("Привет, Quorvel!\r"); });
    window.select(2);
    const Picture picture = grabAtRest(window);
    GError* error = nullptr;
    if (!gdk_pixbuf_save(picture.get(), file.c_str(), "png", &error, "compression", "9", nullptr)) {
      throw std::runtime_error(error->message);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: take_screenshots FOLDER\n";
    return 2;
  }
  rig::XServer server({"Handheld Scanner"});
  takePicture(server, rig::libraryPath(), argv[1] + std::string("/test-window.png"));
}
