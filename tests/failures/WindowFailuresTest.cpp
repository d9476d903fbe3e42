// Every failure of the system until the test window is open.
#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <string>

#include "tests/failures/Subject.h"
#include "tests/rig/TestWindow.h"
#include "tools/common/HostVariants.h"
#include "tools/common/SerialLine.h"

namespace {

using failures::Subject;
using rig::Call;
using rig::FailingCalls;
using rig::Sweep;

// Each window takes GTK a while.
constexpr unsigned kFew = 4;

const Sweep kWindowSweeps[] = {
    {{"no memory for the driver", Call::kNew, ENOMEM}, 1, 150, 50},
    {{"waiting is interrupted", Call::kWait, EINTR}, 1, kFew},
    {{"no thread", Call::kStartThread, EAGAIN}, 1, kFew},
    {{"no eventfd", Call::kEventfd, EMFILE}, 1, kFew},
    {{"no file can be opened", Call::kOpen, EMFILE}, 1, kFew},
    {{"no attributes", Call::kGetAttributes, EIO}, FailingCalls::kEver, 1},
    {{"no connection", Call::kConnect, ECONNREFUSED}, 1, kFew},
    {{"no connection", Call::kConnect, ECONNREFUSED}, FailingCalls::kEver, 1},
};

class WindowFailures : public rig::OnScreen, public testing::WithParamInterface<Sweep> {};

gboolean endFailures(gpointer) {
  FailingCalls::end();
  return G_SOURCE_REMOVE;
}

bool showWindow(Subject& subject, const Sweep& failure, unsigned first) {
  bool result = false;
  const auto show = [&] {
    // A file that GTK cannot open is a warning.
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK));
    // What plays the user in the window's main loop is not to fail.
    g_idle_add_full(G_PRIORITY_HIGH, endFailures, nullptr, nullptr);
    const FailingCalls failing(failure.failure, first, failure.times);
    result = subject.test();
  };
  try {
    rig::whileTestWindowIsOpen(show, [](rig::TestWindow&) {});
  } catch (const std::runtime_error&) {
    // Without a window, too, the method returns.
  }
  return result;
}

TEST_P(WindowFailures, ALaterScanArrives) {
  const Sweep& failure = GetParam();
  rig::sharedXServer();
  const auto line = rig::scannerAt("/dev/ttyUSB0");
  Subject subject;
  const rig::Ends ends = rig::sweep(failure, [&](unsigned first) {
    const bool shown = showWindow(subject, failure, first);
    EXPECT_TRUE(shown || failure.failure.call == Call::kNew);
    const std::u16string port = u"Port";
    subject.setParameter(port, terminal::numberVariant(129));
    ASSERT_TRUE(subject.open());
    line->send("later\r");
    const auto event = subject.events().take(rig::kPatience);
    ASSERT_TRUE(event);
    EXPECT_EQ(event->data, u"later");
  });
  if (failure.failure.call == Call::kStartThread) {
    // Pango has GLib start a thread for the fonts, and GLib ends a process that cannot.
    failures::expectEndsOnlyIn(ends, {"libglib"});
  } else {
    failures::expectEndsOnlyIn(ends, {});
  }
}

INSTANTIATE_TEST_SUITE_P(All, WindowFailures, testing::ValuesIn(kWindowSweeps));

}  // namespace
