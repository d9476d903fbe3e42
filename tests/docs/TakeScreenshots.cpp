// Takes the screenshots for the documents: the test window, with a row from each kind of device,
// and the settings form. Run it in a private /dev, as the tests are, with the output folder.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/docs/FormWindow.h"
#include "tests/rig/Program.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/XServer.h"
#include "tools/common/FormDocument.h"
#include "tools/common/HostText.h"

namespace {

struct PixbufUnref {
  void operator()(GdkPixbuf* picture) const { g_object_unref(picture); }
};
using Picture = std::unique_ptr<GdkPixbuf, PixbufUnref>;

gboolean quit(gpointer loop) {
  g_main_loop_quit(static_cast<GMainLoop*>(loop));
  return G_SOURCE_REMOVE;
}

void runMainLoop(guint milliseconds) {
  GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
  g_timeout_add(milliseconds, quit, loop);
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
}

// The window as it is on the screen now, with the window manager's frame.
Picture grab(GtkWidget* window) {
  GdkRectangle frame;
  gdk_window_get_frame_extents(gtk_widget_get_window(window), &frame);
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
Picture grabAtRest(GtkWidget* window) {
  constexpr int kSame = 5;
  Picture picture = grab(window);
  for (int same = 0; same < kSame;) {
    runMainLoop(100);
    Picture next = grab(window);
    same = areEqual(picture.get(), next.get()) ? same + 1 : 0;
    picture = std::move(next);
  }
  return picture;
}

void save(GtkWidget* window, const std::string& file) {
  const Picture picture = grabAtRest(window);
  GError* error = nullptr;
  if (!gdk_pixbuf_save(picture.get(), file.c_str(), "png", &error, "compression", "9", nullptr)) {
    throw std::runtime_error(error->message);
  }
}

void takeForm(terminal::Component& driver, const std::string& port, const std::string& file) {
  GtkWidget* const window =
      rig::showForm(terminal::readForm(terminal::toUtf8(driver.parameters())), port);
  save(window, file);
  gtk_widget_destroy(window);
}

void takeTestWindow(terminal::Component& driver, const std::function<void()> (&scans)[5],
                    const std::string& file) {
  rig::visitWindow(driver, [&](rig::TestWindow& window) {
    std::size_t rows = 0;
    for (const auto& scan : scans) {
      scan();
      window.awaitRows(++rows);
    }
    window.select(2);
    save(GTK_WIDGET(window.dialog()), file);
  });
}

void takePictures(rig::XServer& server, const std::string& folder) {
  const auto com = rig::scannerAt("/dev/ttyS0");
  const auto acm = rig::scannerAt("/dev/ttyACM0");
  const auto usb = rig::scannerAt("/dev/ttyUSB0");
  terminal::ComponentLibrary component(rig::libraryPath());
  terminal::Component driver(component, u"InputDevice");
  const std::function<void()> scans[] = {
      [&] { com->send("4600051000057\r"); },
      [&] {
        acm->send(
            "]C1010460005100005710ABC123\x1D"
            "21A7\r");
      },
      [&] { usb->send(";4000001234567899=30121010000000000000?\r"); },
      [&] { terminal::type(server.keyboard(0), "9785170983551\r"); },
      [&] { acm->send("Привет, Quorvel!\r"); }};
  takeTestWindow(driver, scans, folder + "/test-window.png");
  takeForm(driver, "129", folder + "/form-of-a-port.png");
  takeForm(driver, "0", folder + "/form-of-a-keyboard.png");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: take_screenshots LOOK-FOLDER PICTURE-FOLDER\n";
    return 2;
  }
  const std::string look = argv[1];
  setenv("GTK2_RC_FILES", (look + "/gtkrc").c_str(), 1);
  rig::XServer server({"Handheld Scanner"});
  server.keyboard(0);
  setenv("DISPLAY", server.display().c_str(), 1);
  const rig::Program manager({"openbox", "--config-file", look + "/openbox.xml"});
  while (rig::run({"wmctrl", "-m"}).code != 0) {
  }
  takePictures(server, argv[2]);
}
