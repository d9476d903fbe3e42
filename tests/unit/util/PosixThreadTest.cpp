#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <memory>
#include <new>
#include <semaphore>
#include <string>

#include "util/PosixThread.h"

namespace quorvel {
namespace {

void* keepSignalMask(void* mask) {
  pthread_sigmask(SIG_SETMASK, nullptr, static_cast<sigset_t*>(mask));
  return nullptr;
}

void* keepThread(void* thread) {
  *static_cast<pthread_t*>(thread) = pthread_self();
  return nullptr;
}

std::string blockedSignals(const sigset_t& mask) {
  std::string text;
  for (int number = 1; number < NSIG; ++number) {
    text += sigismember(&mask, number) == 1 ? 'x' : '.';
  }
  return text;
}

// While it exists, no thread can be created: the default stack is impossibly large.
class ImpossibleThreads {
 public:
  ImpossibleThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t greedy;
    pthread_getattr_default_np(&greedy);
    pthread_attr_setstacksize(&greedy, sizeof(void*) == 4 ? 0xF0000000 : ~std::size_t{0} / 4);
    pthread_setattr_default_np(&greedy);
    pthread_attr_destroy(&greedy);
  }
  ~ImpossibleThreads() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }

 private:
  pthread_attr_t before_;
};

TEST(PosixThread, RunsTheFunctionOnAThreadOfItsOwn) {
  pthread_t runner = pthread_self();
  PosixThread thread;
  ASSERT_TRUE(thread.start(keepThread, &runner));
  thread.join();
  EXPECT_FALSE(pthread_equal(runner, pthread_self()));
}

TEST(PosixThread, BlocksAsynchronousSignalsButNotFaults) {
  sigset_t inside;
  sigemptyset(&inside);
  PosixThread thread;
  ASSERT_TRUE(thread.start(keepSignalMask, &inside));
  thread.join();
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGALRM, SIGCHLD, SIGUSR1, SIGRTMAX}) {
    EXPECT_EQ(sigismember(&inside, number), 1) << number;
  }
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
    EXPECT_EQ(sigismember(&inside, fault), 0) << fault;
  }
}

void* keepStackSize(void* size) {
  pthread_attr_t own;
  pthread_getattr_np(pthread_self(), &own);
  void* lowest = nullptr;
  pthread_attr_getstack(&own, &lowest, static_cast<std::size_t*>(size));
  pthread_attr_destroy(&own);
  return nullptr;
}

// Measured in a thread that was started with the argument.
std::size_t stackSize(std::size_t stackBytes) {
  std::size_t size = 0;
  PosixThread thread;
  EXPECT_TRUE(thread.start(keepStackSize, &size, stackBytes));
  thread.join();
  return size;
}

TEST(PosixThread, HasTheDefaultStackUnlessToldOtherwise) {
  // A sanitizer adds some of its own.
  EXPECT_LT(stackSize(kSmallStack), 8 * kSmallStack);
  EXPECT_GT(stackSize(kSmallStack), kSmallStack / 2);
  EXPECT_GT(stackSize(0), 8 * kSmallStack);
}

TEST(PosixThread, HasTheDefaultStackWhenTheSystemRefusesASmallOne) {
  EXPECT_GT(stackSize(1), 8 * kSmallStack);
}

TEST(PosixThread, LeavesTheSignalsOfItsStarterAlone) {
  sigset_t usr1, before, after;
  sigemptyset(&usr1);
  sigaddset(&usr1, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &usr1, nullptr);
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  pthread_t runner;
  PosixThread thread;
  ASSERT_TRUE(thread.start(keepThread, &runner));
  pthread_sigmask(SIG_SETMASK, nullptr, &after);
  thread.join();
  pthread_sigmask(SIG_UNBLOCK, &usr1, nullptr);
  EXPECT_EQ(blockedSignals(after), blockedSignals(before));
}

TEST(PosixThread, IsNotWaitedForWhenItWasNotStarted) {
  PosixThread thread;
  thread.join();
  thread.join();
}

TEST(PosixThread, IsWaitedForOnce) {
  pthread_t runner;
  PosixThread thread;
  ASSERT_TRUE(thread.start(keepThread, &runner));
  thread.join();
  thread.join();
}

// A thread that joins itself.
struct SelfJoining {
  void run() {
    ASSERT_TRUE(thread->start(
        [](void* self) {
          static_cast<SelfJoining*>(self)->joinItself();
          return static_cast<void*>(nullptr);
        },
        this));
    started.release();
  }
  void joinItself() {
    started.acquire();
    thread->join();
    thread.reset();
    goesOn.release();
  }

  std::unique_ptr<PosixThread> thread = std::make_unique<PosixThread>();
  std::binary_semaphore started{0};
  std::binary_semaphore goesOn{0};
};

TEST(PosixThread, GoesOnAloneWhenItJoinsItself) {
  SelfJoining joining;
  joining.run();
  joining.goesOn.acquire();
  EXPECT_EQ(joining.thread, nullptr);
}

TEST(PosixThread, ReportsThatItCannotBeCreated) {
  sigset_t before, after;
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  const ImpossibleThreads impossible;
  pthread_t runner;
  PosixThread thread;
  EXPECT_FALSE(thread.start(keepThread, &runner));
  thread.join();
  pthread_sigmask(SIG_SETMASK, nullptr, &after);
  EXPECT_EQ(blockedSignals(after), blockedSignals(before));
}

TEST(DropExceptions, TellsWhetherSomethingWasThrown) {
  EXPECT_TRUE(dropExceptions([] {}));
  EXPECT_FALSE(dropExceptions([] { throw std::bad_alloc(); }));
  EXPECT_FALSE(dropExceptions([] { throw 1; }));
}

// What a thread that ends in the middle of an operation got to do.
struct Seen {
  bool unwound = false;
  bool wentOn = false;
};

void* endInOperation(void* argument) {
  auto& seen = *static_cast<Seen*>(argument);
  struct Unwound {
    ~Unwound() { flag = true; }
    bool& flag;
  };
  const Unwound unwound{seen.unwound};
  dropExceptions([] { pthread_exit(nullptr); });
  seen.wentOn = true;
  return nullptr;
}

TEST(DropExceptions, LetsAThreadEndInTheMiddle) {
  Seen seen;
  PosixThread thread;
  ASSERT_TRUE(thread.start(endInOperation, &seen));
  thread.join();
  EXPECT_TRUE(seen.unwound);
  EXPECT_FALSE(seen.wentOn);
}

}  // namespace
}  // namespace quorvel
