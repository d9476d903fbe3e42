#include "util/PosixThread.h"

#include "util/SignalMask.h"

namespace quorvel {
namespace {

class Attributes {
 public:
  explicit Attributes(std::size_t stackBytes) {
    pthread_attr_init(&attributes_);
    // A size below the system's minimum is refused, and the default stays.
    if (stackBytes > 0) pthread_attr_setstacksize(&attributes_, stackBytes);
  }
  ~Attributes() { pthread_attr_destroy(&attributes_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  const pthread_attr_t* get() const { return &attributes_; }

 private:
  pthread_attr_t attributes_;
};

}  // namespace

bool PosixThread::start(void* (*function)(void*), void* argument, std::size_t stackBytes) {
  const Attributes attributes(stackBytes);
  const ScopedSignalMask inherited(SignalMask::asynchronous());
  creationResult_ = pthread_create(&handle_, attributes.get(), function, argument);
  return creationResult_ == 0;
}

void PosixThread::join() {
  if (creationResult_ != 0) return;
  creationResult_ = ENOMEM;
  if (pthread_equal(handle_, pthread_self())) {
    pthread_detach(handle_);
  } else {
    pthread_join(handle_, nullptr);
  }
}

}  // namespace quorvel
