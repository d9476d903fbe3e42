// What a serial scanner cannot do without, as plainly as C can say it.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace bench {

// Opens a port and reads it on a thread of its own: waits with select for up to a second, takes one
// byte per read, and calls back with what stands before each carriage return.
class BareSerialReader {
 public:
  using Callback = std::function<void(const std::string& scan)>;

  BareSerialReader(const std::string& port, Callback callback);
  // Takes up to a second.
  ~BareSerialReader();
  BareSerialReader(const BareSerialReader&) = delete;
  BareSerialReader& operator=(const BareSerialReader&) = delete;

 private:
  void run();

  const Callback callback_;
  const int descriptor_;
  std::atomic<bool> running_ = true;
  std::thread thread_;
};

}  // namespace bench
