#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "devices/FocusTracker.h"
#include "devices/KeyboardList.h"
#include "devices/XQueries.h"
#include "tests/rig/Environment.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"

// After GoogleTest, which X's macros break.
#include <X11/extensions/XInput2.h>

namespace quorvel {
namespace {

constexpr pid_t kAnotherProcess = 1;

class FocusTrackerTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = std::make_unique<rig::XServer>(std::vector<std::string>{"Keys"});
  }
  static void TearDownTestSuite() { server_.reset(); }

  FocusTrackerTest() {
    connection_.call([](Display* display) {
      int major = 2, minor = 0;
      XIQueryVersion(display, &major, &minor);
    });
    selectHierarchyEvents(connection_);
    client_.focus(PointerRoot);
  }

  // A child of a window that belongs to the process.
  Window openWindowOf(pid_t process) {
    const Window frame = client_.openWindow();
    client_.setProcess(frame, process);
    return client_.openWindow(frame);
  }

  // The tracker's answer after it has been given every pending event.
  bool belongsToAnotherProcess() {
    XSync(connection_.get(), False);
    while (XPending(connection_.get()) > 0) {
      XEvent event;
      XNextEvent(connection_.get(), &event);
      tracker_.handle(event);
    }
    return tracker_.belongsToAnotherProcess();
  }

  // Whether the tracker has asked for XI2 events on the window.
  bool isTracked(Window window) {
    int count = 0;
    const XOwned<XIEventMask> masks(XIGetSelectedEvents(connection_.get(), window, &count));
    return count > 0;
  }

  static inline std::unique_ptr<rig::XServer> server_;
  const rig::ScopedVariable display_{"DISPLAY", server_->display()};
  const XConnection connection_ = XConnection::open();
  rig::XClient client_{server_->display()};
  FocusTracker tracker_{connection_};
};

TEST_F(FocusTrackerTest, FollowsTheFocus) {
  EXPECT_FALSE(belongsToAnotherProcess());
  client_.focus(openWindowOf(kAnotherProcess));
  EXPECT_TRUE(belongsToAnotherProcess());
  client_.focus(openWindowOf(getpid()));
  EXPECT_FALSE(belongsToAnotherProcess());
  client_.focus(openWindowOf(kAnotherProcess));
  EXPECT_TRUE(belongsToAnotherProcess());
  client_.focus(None);
  EXPECT_FALSE(belongsToAnotherProcess());
}

TEST_F(FocusTrackerTest, SendsNoRequestsWhileNothingChanges) {
  client_.focus(openWindowOf(kAnotherProcess));
  EXPECT_TRUE(belongsToAnotherProcess());
  // The second answer also counts the master keyboards.
  EXPECT_TRUE(belongsToAnotherProcess());
  const unsigned long next = NextRequest(connection_.get());
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(tracker_.belongsToAnotherProcess());
  EXPECT_EQ(NextRequest(connection_.get()), next);
}

// Another client may change windows as often as it likes, however many there are.
TEST_F(FocusTrackerTest, AsksNoWindowButTheOneThatHasChanged) {
  Window focused = openWindowOf(kAnotherProcess);
  const Window between = focused;
  for (int i = 0; i < 20; ++i) focused = client_.openWindow(focused);
  client_.focus(focused);
  EXPECT_TRUE(belongsToAnotherProcess());
  EXPECT_TRUE(belongsToAnotherProcess());  // counts the master keyboards
  const auto requestsFor = [&](bool answer) {
    const unsigned long next = NextRequest(connection_.get());
    EXPECT_EQ(belongsToAnotherProcess(), answer);
    return NextRequest(connection_.get()) - next;
  };
  const unsigned long needed = requestsFor(true);
  client_.setProcess(between, getpid());
  EXPECT_EQ(requestsFor(false), needed + 1);
  client_.setProcess(between, kAnotherProcess);
  EXPECT_EQ(requestsFor(true), needed + 1);
  client_.setProcess(between, getpid());
  EXPECT_EQ(requestsFor(false), needed + 1);
  client_.removeProcess(between);
  EXPECT_EQ(requestsFor(true), needed);
}

TEST_F(FocusTrackerTest, LooksFurtherUpWhenAWindowLosesItsProcess) {
  const Window frame = openWindowOf(getpid());
  const Window window = client_.openWindow(frame);
  client_.setProcess(window, kAnotherProcess);
  client_.focus(client_.openWindow(window));
  EXPECT_TRUE(belongsToAnotherProcess());
  client_.removeProcess(window);
  EXPECT_FALSE(belongsToAnotherProcess());
  client_.setProcess(frame, kAnotherProcess);
  EXPECT_TRUE(belongsToAnotherProcess());
}

TEST_F(FocusTrackerTest, StopsWatchingWhereTheFocusHasLeft) {
  const Window left = openWindowOf(kAnotherProcess);
  const Window leftFrame = *parentOf(connection_, left);
  client_.focus(left);
  belongsToAnotherProcess();
  EXPECT_TRUE(isTracked(left));
  EXPECT_TRUE(client_.isWatched(leftFrame, PropertyChangeMask));
  client_.focus(openWindowOf(kAnotherProcess));
  belongsToAnotherProcess();
  EXPECT_FALSE(isTracked(left));
  EXPECT_FALSE(client_.isWatched(leftFrame, PropertyChangeMask));
}

TEST_F(FocusTrackerTest, FollowsAFocusThatAnotherClientGrabs) {
  const int keyboard = client_.device("Virtual core keyboard");
  for (const Window before : {Window{None}, Window{PointerRoot}, openWindowOf(getpid())}) {
    client_.focus(before);
    EXPECT_FALSE(belongsToAnotherProcess());
    const Window grabbed = openWindowOf(kAnotherProcess);
    client_.grabFocusOn(grabbed, keyboard);
    client_.focus(grabbed);
    EXPECT_TRUE(belongsToAnotherProcess()) << "from " << before;
    // Moving the focus from such a window to None crashes X servers.
    client_.focus(client_.openWindow());
  }
}

class SecondMasterTest : public FocusTrackerTest {
 protected:
  ~SecondMasterTest() override { client_.removeMaster(client_.device("Second keyboard")); }

  void addSecondMaster() {
    client_.addMaster("Second");
    client_.focusOf(client_.device("Second keyboard"), openWindowOf(kAnotherProcess));
    own_ = XCreateSimpleWindow(connection_.get(), DefaultRootWindow(connection_.get()), 0, 0, 1, 1,
                               0, 0, 0);
    XSync(connection_.get(), False);
  }

  Window own_ = None;  // of the tracker's connection
};

TEST_F(SecondMasterTest, TheFocusOfTheClientPointerCounts) {
  addSecondMaster();
  client_.focus(openWindowOf(getpid()));
  EXPECT_FALSE(belongsToAnotherProcess());
  client_.setClientPointer(own_, client_.device("Second pointer"));
  EXPECT_TRUE(belongsToAnotherProcess());
  client_.setClientPointer(own_, client_.device("Virtual core pointer"));
  EXPECT_FALSE(belongsToAnotherProcess());
}

TEST_F(SecondMasterTest, MayComeLaterThanTheFirstAnswer) {
  client_.focus(openWindowOf(getpid()));
  EXPECT_FALSE(belongsToAnotherProcess());
  EXPECT_FALSE(belongsToAnotherProcess());
  addSecondMaster();
  EXPECT_FALSE(belongsToAnotherProcess());
  client_.setClientPointer(own_, client_.device("Second pointer"));
  EXPECT_TRUE(belongsToAnotherProcess());
}

}  // namespace
}  // namespace quorvel
