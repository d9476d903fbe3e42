// Owning types for the C library's handles.
#pragma once

#include <fcntl.h>
#include <iconv.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <utility>

namespace quorvel {

// Owns a file descriptor; -1 when empty.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() { reset(); }

  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

  void reset() {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = -1;
  }

 private:
  int descriptor_ = -1;
};

// The same file under another number than 0, which stays free where a host has no standard input:
// what reads from there must not get hold of a descriptor of the driver's.
inline FileDescriptor notStandardInput(FileDescriptor descriptor) {
  if (descriptor.get() != 0) return descriptor;
  return FileDescriptor(::fcntl(0, F_DUPFD_CLOEXEC, 1));
}

// Owns an iconv conversion; false when the C library does not offer it.
class IconvDescriptor {
 public:
  IconvDescriptor(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
  IconvDescriptor(const IconvDescriptor&) = delete;
  IconvDescriptor& operator=(const IconvDescriptor&) = delete;
  ~IconvDescriptor() {
    if (*this) iconv_close(descriptor_);
  }

  iconv_t get() const { return descriptor_; }
  // iconv_open reports failure as (iconv_t)-1.
  explicit operator bool() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

 private:
  iconv_t descriptor_;
};

struct PipeCloser {
  void operator()(std::FILE* pipe) const { pclose(pipe); }
};

// The stream of a command started with popen. Closing it waits for the command to end.
using Pipe = std::unique_ptr<std::FILE, PipeCloser>;

}  // namespace quorvel
