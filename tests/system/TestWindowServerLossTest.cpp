// An X server that dies at any request that the test window makes must not take the host with it.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdlib>
#include <new>
#include <string>

#include "tests/rig/Driver.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/XProxy.h"

namespace {

using rig::XProxy;

// Sanitizers make each process of the walk slow; there, every third request does.
#ifdef QUORVEL_SANITIZED
constexpr unsigned kStep = 3;
#else
constexpr unsigned kStep = 1;
#endif

// A flag that child processes set for their parent.
class SharedFlag {
 public:
  SharedFlag()
      : flag_(new (mmap(nullptr, sizeof(bool), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                        -1, 0)) bool(false)) {}
  ~SharedFlag() { munmap(flag_, sizeof(bool)); }
  SharedFlag(const SharedFlag&) = delete;
  SharedFlag& operator=(const SharedFlag&) = delete;
  bool& operator*() const { return *flag_; }

 private:
  bool* const flag_;
};

// Closes the window as soon as it is shown.
gboolean closeWindow(gpointer) {
  GList* const windows = gtk_window_list_toplevels();
  bool closed = false;
  for (GList* at = windows; at; at = at->next) {
    if (!GTK_IS_DIALOG(at->data) || !gtk_widget_get_visible(GTK_WIDGET(at->data))) continue;
    gtk_dialog_response(GTK_DIALOG(at->data), GTK_RESPONSE_CLOSE);
    closed = true;
  }
  g_list_free(windows);
  return closed ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
}

class TestWindowServerLoss : public rig::WindowTest {};

TEST_F(TestWindowServerLoss, AtAnyRequestLeavesTheHostAlive) {
  terminal::SerialLine& scanner = plugIn("/dev/ttyACM0");
  const std::string realDisplay = rig::sharedXServer().display();
  const SharedFlag died;
  *died = true;
  unsigned request = 0;
  while (*died && !HasFailure()) {
    request += kStep;
    SCOPED_TRACE("request " + std::to_string(request));
    rig::inOwnProcess([&] {
      XProxy proxy(realDisplay, request);
      setenv("DISPLAY", proxy.display().c_str(), 1);
      // As with G_DEBUG=fatal-warnings.
      g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL |
                                                         G_LOG_LEVEL_WARNING | G_LOG_FATAL_MASK));
      rig::Driver driver;
      const guint timer = g_timeout_add(0, closeWindow, nullptr);
      EXPECT_TRUE(driver.component.test());
      *died = proxy.isDead();
      // The host's own main loop must not touch the lost display.
      if (GSource* const source = g_main_context_find_source_by_id(nullptr, timer)) {
        g_source_destroy(source);
      }
      while (g_main_context_iteration(nullptr, FALSE)) continue;
      EXPECT_TRUE(!*died || driver.component.test());
    });
    scanner.link("/dev/ttyACM0");
  }
  RecordProperty("requests", static_cast<int>(request - kStep));
  EXPECT_GT(request, 50U);
}

}  // namespace
