// System calls and allocations that fail at a chosen moment, in whatever library makes them.
#pragma once

namespace rig {

enum class Call {
  kAllocate,       // malloc and its relatives, and so operator new
  kNew,            // operator new alone: the driver's allocations, and none of Xlib's
  kOpen,           // open and its relatives
  kRead,           // read
  kWait,           // select and poll
  kStartThread,    // pthread_create
  kEventfd,        // eventfd
  kInotify,        // inotify_init1
  kStartProcess,   // popen, fork, pipe and pipe2
  kGetAttributes,  // tcgetattr
  kSetAttributes,  // tcsetattr
  kIconv,          // iconv_open
  kConnect,        // connect
};

struct Failure {
  const char* name;
  Call call;
  int error;  // errno; 0, for kRead: the end of the file
};

// While it lives, `times` calls fail, beginning with the `first`-th, counted from 1. Calls of every
// thread of the process count, except those made under ExemptFromFailure. Only one at a time. Works
// only in programs that link this file's source, which replaces the C library's functions.
class FailingCalls {
 public:
  static constexpr unsigned kEver = ~0U;

  FailingCalls(const Failure& failure, unsigned first, unsigned times);
  ~FailingCalls();
  FailingCalls(const FailingCalls&) = delete;
  FailingCalls& operator=(const FailingCalls&) = delete;

  // No call fails any more.
  static void end();

  // How many calls have failed.
  static unsigned failed();
};

// What this thread calls meanwhile neither counts nor fails. They nest.
class ExemptFromFailure {
 public:
  ExemptFromFailure();
  ~ExemptFromFailure();
  ExemptFromFailure(const ExemptFromFailure&) = delete;
  ExemptFromFailure& operator=(const ExemptFromFailure&) = delete;
};

// The reverse, inside of it.
class SubjectToFailure {
 public:
  SubjectToFailure();
  ~SubjectToFailure();
  SubjectToFailure(const SubjectToFailure&) = delete;
  SubjectToFailure& operator=(const SubjectToFailure&) = delete;

 private:
  const int before_;
};

// Blocks of memory that this process has allocated and not freed.
long blocksAllocated();

}  // namespace rig
