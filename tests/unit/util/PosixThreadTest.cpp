#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>

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

// No thread has so much stack.
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

TEST(PosixThread, IsDeafToTheHostsSignals) {
  sigset_t inside;
  sigemptyset(&inside);
  PosixThread thread;
  ASSERT_TRUE(thread.start(keepSignalMask, &inside));
  thread.join();
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGALRM, SIGCHLD, SIGUSR1, SIGRTMAX}) {
    EXPECT_EQ(sigismember(&inside, number), 1) << number;
  }
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

TEST(PosixThread, ThatWasNotStartedIsNotWaitedFor) {
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

TEST(PosixThread, SaysWhenThereIsNoThreadToBeHad) {
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

}  // namespace
}  // namespace quorvel
