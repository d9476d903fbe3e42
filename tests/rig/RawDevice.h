// A device on a raw line, fed so that what it delivers depends on nothing but the bytes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"
#include "util/Handles.h"

namespace rig {

// A connection that holds a reader while it raises one certain event.
class GatedConnection : public terminal::HostConnection {
 public:
  GatedConnection(terminal::EventQueue& events, std::u16string heldData)
      : HostConnection(events), heldData_(std::move(heldData)) {}

  // Waits until a reader is held, and lets it go.
  void awaitHeld();
  void release();

  bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override;

 private:
  const std::u16string heldData_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool held_ = false;
};

// The base64 text of bytes.
std::u16string base64(std::string_view bytes);

// The bytes of the suffix that the parameter with this character code stands for; -1 is none.
std::string suffixBytes(std::int32_t code);

// Between two calls the reader is held in the delivery of a message that is sent for this, so that
// what is sent next waits for it as a whole.
class RawDevice {
 public:
  // Opens the port for messages that end with the character of a code.
  RawDevice(std::int32_t port, std::int32_t suffixCode);
  ~RawDevice();

  // Sends bytes that the reader finds in the line all at once: at most 4000 of them. The messages
  // that it makes of them, as base64 texts.
  std::vector<std::u16string> burst(std::string_view bytes);

  // Sends byte by byte, with a pause after each, and each only when the reader has taken the one
  // before it and found the line empty.
  std::vector<std::u16string> drip(std::string_view bytes, std::chrono::microseconds pause);

 private:
  Reading readingAfter(const Reading& before, std::string_view bytes) const;
  void awaitReading(const Reading& expected) const;
  std::vector<std::u16string> holdReader();

  const std::string suffix_;
  const std::string holding_;  // the message that holds the reader
  terminal::EventQueue events_;
  GatedConnection gate_{events_, base64(holding_)};
  SerialDriver driver_;
  terminal::SerialLine& line_;
  quorvel::FileDescriptor port_;  // to see what waits in the line
  pid_t reader_;
};

}  // namespace rig
