#include "tests/rig/FailingCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <iconv.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

// The program's functions come before the C library's, for libraries too.
#define QUORVEL_REPLACES extern "C" __attribute__((visibility("default")))

// The C library's own allocator, under the names that it has for a program that replaces malloc.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);
}

namespace {

// Plain variables: the allocator runs before any constructor, and on every thread.
std::atomic<bool> armed = false;
std::atomic<rig::Call> failing;
std::atomic<int> failingWith = 0;
std::atomic<unsigned> counted = 0, firstToFail = 0, toFail = 0, hasFailed = 0;
std::atomic<long> blocks = 0;
constinit thread_local int exemptions = 0;

bool fails(rig::Call call) {
  if (!armed || exemptions > 0 || failing != call) return false;
  const unsigned number = ++counted;
  if (number < firstToFail || number - firstToFail >= toFail) return false;
  ++hasFailed;
  errno = failingWith;
  return true;
}

// The C library's function of this name.
template <typename Function>
Function* real(Function* replaced, const char* name) {
  static_cast<void>(replaced);
  const rig::ExemptFromFailure looking;
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void* counting(void* block) {
  if (block) ++blocks;
  return block;
}

mode_t modeAfter(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

namespace rig {

FailingCalls::FailingCalls(const Failure& failure, unsigned first, unsigned times) {
  failing = failure.call;
  failingWith = failure.error;
  counted = hasFailed = 0;
  firstToFail = first;
  toFail = times;
  armed = true;
}
FailingCalls::~FailingCalls() { end(); }

void FailingCalls::end() { armed = false; }
unsigned FailingCalls::failed() { return hasFailed; }

ExemptFromFailure::ExemptFromFailure() { ++exemptions; }
ExemptFromFailure::~ExemptFromFailure() { --exemptions; }
SubjectToFailure::SubjectToFailure() : before_(std::exchange(exemptions, 0)) {}
SubjectToFailure::~SubjectToFailure() { exemptions = before_; }

long blocksAllocated() { return blocks; }

}  // namespace rig

using rig::Call;

QUORVEL_REPLACES void* malloc(std::size_t size) {
  return fails(Call::kAllocate) ? nullptr : counting(__libc_malloc(size));
}
QUORVEL_REPLACES void* calloc(std::size_t count, std::size_t size) {
  return fails(Call::kAllocate) ? nullptr : counting(__libc_calloc(count, size));
}
QUORVEL_REPLACES void* realloc(void* block, std::size_t size) {
  if (fails(Call::kAllocate)) return nullptr;
  void* const result = __libc_realloc(block, size);
  if (!block && result) ++blocks;
  if (block && size == 0) --blocks;
  return result;
}
QUORVEL_REPLACES void* memalign(std::size_t alignment, std::size_t size) {
  return fails(Call::kAllocate) ? nullptr : counting(__libc_memalign(alignment, size));
}
QUORVEL_REPLACES void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return memalign(alignment, size);
}
QUORVEL_REPLACES int posix_memalign(void** slot, std::size_t alignment, std::size_t size) {
  void* const block = memalign(alignment, size);
  if (!block) return ENOMEM;
  *slot = block;
  return 0;
}
QUORVEL_REPLACES void free(void* block) {
  if (block) --blocks;
  __libc_free(block);
}

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
  void* const block = fails(Call::kNew) ? nullptr : malloc(size > 0 ? size : 1);
  if (!block) throw std::bad_alloc();
  return block;
}
__attribute__((visibility("default"))) void operator delete(void* block) noexcept { free(block); }
__attribute__((visibility("default"))) void operator delete(void* block, std::size_t) noexcept {
  free(block);
}

QUORVEL_REPLACES int open(const char* path, int flags, ...) {
  static const auto next = real(&open, "open");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeAfter(flags, arguments);
  va_end(arguments);
  return fails(Call::kOpen) ? -1 : next(path, flags, mode);
}
QUORVEL_REPLACES int open64(const char* path, int flags, ...) {
  static const auto next = real(&open64, "open64");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeAfter(flags, arguments);
  va_end(arguments);
  return fails(Call::kOpen) ? -1 : next(path, flags, mode);
}
QUORVEL_REPLACES ssize_t read(int descriptor, void* buffer, std::size_t size) {
  static const auto next = real(&read, "read");
  if (fails(Call::kRead)) return failingWith == 0 ? 0 : -1;
  return next(descriptor, buffer, size);
}
QUORVEL_REPLACES int select(int count, fd_set* in, fd_set* out, fd_set* other, timeval* limit) {
  static const auto next = real(&select, "select");
  return fails(Call::kWait) ? -1 : next(count, in, out, other, limit);
}
QUORVEL_REPLACES int poll(pollfd* descriptors, nfds_t count, int limit) {
  static const auto next = real(&poll, "poll");
  return fails(Call::kWait) ? -1 : next(descriptors, count, limit);
}
QUORVEL_REPLACES int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                    void* (*function)(void*), void* argument) noexcept {
  static const auto next = real(&pthread_create, "pthread_create");
  return fails(Call::kStartThread) ? failingWith.load()
                                   : next(thread, attributes, function, argument);
}
QUORVEL_REPLACES int eventfd(unsigned count, int flags) noexcept {
  static const auto next = reinterpret_cast<int (*)(unsigned, int)>(dlsym(RTLD_NEXT, "eventfd"));
  return fails(Call::kEventfd) ? -1 : next(count, flags);
}
QUORVEL_REPLACES int inotify_init1(int flags) noexcept {
  static const auto next = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "inotify_init1"));
  return fails(Call::kInotify) ? -1 : next(flags);
}
QUORVEL_REPLACES FILE* popen(const char* command, const char* mode) {
  static const auto next = real(&popen, "popen");
  return fails(Call::kStartProcess) ? nullptr : next(command, mode);
}
QUORVEL_REPLACES pid_t fork() noexcept {
  static const auto next = real(&fork, "fork");
  return fails(Call::kStartProcess) ? -1 : next();
}
QUORVEL_REPLACES int pipe(int* ends) noexcept {
  static const auto next = real(&pipe, "pipe");
  return fails(Call::kStartProcess) ? -1 : next(ends);
}
QUORVEL_REPLACES int pipe2(int* ends, int flags) noexcept {
  static const auto next = real(&pipe2, "pipe2");
  return fails(Call::kStartProcess) ? -1 : next(ends, flags);
}
QUORVEL_REPLACES int tcgetattr(int descriptor, termios* settings) noexcept {
  static const auto next = real(&tcgetattr, "tcgetattr");
  return fails(Call::kGetAttributes) ? -1 : next(descriptor, settings);
}
QUORVEL_REPLACES int tcsetattr(int descriptor, int when, const termios* settings) noexcept {
  static const auto next = real(&tcsetattr, "tcsetattr");
  return fails(Call::kSetAttributes) ? -1 : next(descriptor, when, settings);
}
QUORVEL_REPLACES iconv_t iconv_open(const char* to, const char* from) {
  static const auto next = real(&iconv_open, "iconv_open");
  return fails(Call::kIconv) ? reinterpret_cast<iconv_t>(-1) : next(to, from);
}
QUORVEL_REPLACES int connect(int descriptor, const sockaddr* address, socklen_t size) {
  static const auto next = real(&connect, "connect");
  return fails(Call::kConnect) ? -1 : next(descriptor, address, size);
}
