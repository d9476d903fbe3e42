#include <X11/Xatom.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "devices/XConnection.h"
#include "devices/XQueries.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Process.h"
#include "tests/rig/XProxy.h"
#include "tests/rig/XServer.h"

namespace quorvel {
namespace {

constexpr Window kNoWindow = 1;

// Handlers like those of a host and of a toolkit.
int hostErrors = 0;
int toolkitErrors = 0;
XErrorHandler belowToolkit = nullptr;

int countHostError(Display*, XErrorEvent*) { return ++hostErrors; }

int countToolkitError(Display* display, XErrorEvent* error) {
  ++toolkitErrors;
  return belowToolkit(display, error);
}

class XConnectionTest : public testing::Test {
 protected:
  XConnectionTest() : before_(XSetErrorHandler(countHostError)) {
    hostErrors = toolkitErrors = 0;
    belowToolkit = nullptr;
  }
  ~XConnectionTest() override { XSetErrorHandler(before_); }

  // An error on a display that is not the driver's.
  void raiseForeignError() {
    Display* const display = XOpenDisplay(nullptr);
    XDestroyWindow(display, kNoWindow);
    XCloseDisplay(display);
  }

  rig::XServer server_{{"Scanner"}};
  const rig::ScopedVariable display_{"DISPLAY", server_.display()};
  const XErrorHandler before_;
};

TEST_F(XConnectionTest, MayBeOpenedAndClosedByManyThreads) {
  constexpr int kThreads = 4, kTimes = 40;
  std::atomic<int> opened = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&opened] {
      for (int time = 0; time < kTimes; ++time) {
        const XConnection connection = XConnection::open();
        if (connection && !connection.lost()) ++opened;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(opened, kThreads * kTimes);
}

TEST(XConnectionWithoutServer, IsEmpty) {
  const rig::ScopedVariable display("DISPLAY", std::nullopt);
  const XConnection connection = XConnection::open();
  EXPECT_FALSE(connection);
  EXPECT_EQ(connection.get(), nullptr);
  EXPECT_TRUE(connection.lost());
}

TEST_F(XConnectionTest, SwallowsItsOwnErrors) {
  const XConnection connection = XConnection::open();
  ASSERT_TRUE(connection);
  EXPECT_EQ(parentOf(connection, kNoWindow), std::nullopt);
  EXPECT_FALSE(readCardinal(connection, kNoWindow, XA_CARDINAL).windowExists);
  EXPECT_EQ(hostErrors, 0);
  EXPECT_FALSE(connection.lost());
}

TEST_F(XConnectionTest, PassesOnTheErrorsOfOthers) {
  const XConnection connection = XConnection::open();
  raiseForeignError();
  EXPECT_EQ(hostErrors, 1);
}

TEST_F(XConnectionTest, InstallsItsHandlersOnTopAtEachOpening) {
  const XConnection first = XConnection::open();
  belowToolkit = XSetErrorHandler(countToolkitError);
  const XConnection second = XConnection::open();
  parentOf(first, kNoWindow);
  parentOf(second, kNoWindow);
  EXPECT_EQ(toolkitErrors, 0);
}

// Toolkits put handlers on and take them off with each call that may fail.
TEST_F(XConnectionTest, RemembersAHandlerOnceHoweverOftenItIsPutOn) {
  const XConnection connection = XConnection::open();
  const auto putOnAndOff = [] {
    XSetErrorHandler(countToolkitError);
    installXErrorHandlers();
  };
  putOnAndOff();
  const std::size_t memory = rig::heapBytes();
  constexpr std::size_t kTimes = 20000;
  for (std::size_t i = 0; i < kTimes; ++i) putOnAndOff();
  EXPECT_LT(rig::heapBytes(), memory + kTimes);
}

TEST_F(XConnectionTest, AsksEachHandlerOnceWhenHandlersReferToEachOther) {
  const XConnection connection = XConnection::open();
  belowToolkit = XSetErrorHandler(countToolkitError);
  installXErrorHandlers();
  installXErrorHandlers();
  raiseForeignError();
  EXPECT_EQ(toolkitErrors, 1);
  EXPECT_EQ(hostErrors, 1);
}

TEST_F(XConnectionTest, ComesBackOnTopAfterAToolkitThatTookItsHandlerOff) {
  const XConnection connection = XConnection::open();
  for (int i = 0; i < 3; ++i) {
    belowToolkit = XSetErrorHandler(countToolkitError);
    installXErrorHandlers();
    XSetErrorHandler(belowToolkit);
  }
  raiseForeignError();
  EXPECT_EQ(toolkitErrors, 1);
  EXPECT_EQ(hostErrors, 1);
}

TEST_F(XConnectionTest, IsLostWhenTheServerDiesAndCanBeClosedOnAnyThread) {
  XConnection connection = XConnection::open();
  server_.kill();
  std::thread([&] {
    EXPECT_EQ(parentOf(connection, kNoWindow), std::nullopt);
    EXPECT_TRUE(connection.lost());
  }).join();
  EXPECT_EQ(parentOf(connection, kNoWindow), std::nullopt);
  connection = XConnection();
}

TEST_F(XConnectionTest, MayBeClosedWithoutHavingNoticedThatTheServerDied) {
  XConnection connection = XConnection::open();
  server_.kill();
  connection = XConnection();
}

TEST_F(XConnectionTest, ALossRaisesNoSignal) {
  const auto before = std::signal(SIGPIPE, [](int) { ADD_FAILURE() << "SIGPIPE"; });
  const XConnection connection = XConnection::open();
  server_.kill();
  EXPECT_FALSE(connection.call([](Display* display) {
    // As the kernel does when a write follows the server's death.
    std::raise(SIGPIPE);
    XSync(display, False);
  }));
  std::signal(SIGPIPE, before);
}

TEST_F(XConnectionTest, ALossClosesTheDescriptor) {
  const XConnection connection = XConnection::open();
  const int descriptor = ConnectionNumber(connection.get());
  server_.kill();
  parentOf(connection, kNoWindow);
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(XConnectionTest, IsEmptyWhenTheServerDiesAtAnyRequestOfItsOpening) {
  unsigned requests = 0;
  {
    const rig::XProxy proxy(server_.display());
    const rig::ScopedVariable display("DISPLAY", proxy.display());
    const XConnection connection = XConnection::open();
    requests = proxy.requests();
  }
  ASSERT_GT(requests, 1U);
  for (unsigned request = 1; request <= requests; ++request) {
    const rig::XProxy proxy(server_.display(), request);
    const rig::ScopedVariable display("DISPLAY", proxy.display());
    EXPECT_FALSE(XConnection::open()) << "request " << request << " of " << requests;
  }
}

// A toolkit's handler above the driver's may return; Xlib then calls the display's exit handler.
TEST_F(XConnectionTest, IsLostUnderAForeignHandlerThatReturns) {
  const XConnection connection = XConnection::open();
  const XIOErrorHandler before = XSetIOErrorHandler([](Display*) { return 0; });
  server_.kill();
  EXPECT_EQ(parentOf(connection, kNoWindow), std::nullopt);
  EXPECT_TRUE(connection.lost());
  XSetIOErrorHandler(before);
}

TEST_F(XConnectionTest, SeveralThreadsMayOpenAndClose) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int round = 0; round < 20; ++round) {
        const XConnection connection = XConnection::open();
        EXPECT_TRUE(connection);
        parentOf(connection, kNoWindow);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(hostErrors, 0);
}

TEST_F(XConnectionTest, NamesSeveralAtomsAtOnce) {
  const XConnection connection = XConnection::open();
  constexpr Atom kUnknown = 0xFFFFF;
  const Atom atoms[] = {XA_CARDINAL, kUnknown, XA_WM_NAME};
  EXPECT_EQ(atomNames(connection, atoms), (std::vector<std::string>{"CARDINAL", "", "WM_NAME"}));
  EXPECT_TRUE(atomNames(connection, {}).empty());
}

TEST_F(XConnectionTest, ReadsACardinalAndNothingElse) {
  const XConnection connection = XConnection::open();
  Display* const display = connection.get();
  const Window root = DefaultRootWindow(display);
  const Atom property = XInternAtom(display, "NUMBER", False);
  const auto read = [&] {
    const CardinalProperty result = readCardinal(connection, root, property);
    EXPECT_TRUE(result.windowExists);
    return result.value;
  };
  const auto write = [&](Atom type, int format, int count) {
    const long number = 4711;
    XChangeProperty(display, root, property, type, format, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&number), count);
  };
  EXPECT_EQ(read(), std::nullopt);
  write(XA_CARDINAL, 32, 1);
  EXPECT_EQ(read(), 4711UL);
  write(XA_CARDINAL, 8, 4);
  EXPECT_EQ(read(), std::nullopt);
  write(XA_STRING, 8, 4);
  EXPECT_EQ(read(), std::nullopt);
  write(XA_CARDINAL, 32, 0);
  EXPECT_EQ(read(), std::nullopt);
}

TEST_F(XConnectionTest, FindsTheWindowAbove) {
  const XConnection connection = XConnection::open();
  const Window root = DefaultRootWindow(connection.get());
  const Window window = XCreateSimpleWindow(connection.get(), root, 0, 0, 1, 1, 0, 0, 0);
  EXPECT_EQ(parentOf(connection, window), root);
  EXPECT_EQ(parentOf(connection, root), Window(None));
}

}  // namespace
}  // namespace quorvel
