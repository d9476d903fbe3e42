// The bytes of a message while it is being read.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

// In bytes. What comes without an end, as from a line gone mad, must not fill the host's memory.
inline constexpr std::size_t kLongestMessage = std::size_t{1} << 20;

// A message that is longer than that, or does not fit into memory, is dropped as a whole: the rest
// of it, up to its end, must not pass for a scan. Nothing of a message stays in memory once it is
// taken or cleared. Used on one thread.
class MessageBytes {
 public:
  MessageBytes() = default;
  ~MessageBytes();
  MessageBytes(const MessageBytes&) = delete;
  MessageBytes& operator=(const MessageBytes&) = delete;

  void append(std::string_view bytes);
  void append(char byte) {
    if (!dropped_ && bytes_.size() < std::min(bytes_.capacity(), kLongestMessage)) {
      bytes_.push_back(byte);
    } else {
      append(std::string_view(&byte, 1));
    }
  }

  // Drops the message, whatever is still to come of it.
  void drop();

  // Begins the next message.
  void clear();

  // Whether nothing of the message has come yet.
  bool empty() const { return bytes_.empty() && !dropped_; }

  // Cuts bytes off the end. False when what remains is no message.
  bool cutTail(std::size_t count);

  // Of a message that is not dropped.
  const std::string& bytes() const { return bytes_; }

  // The whole message; nothing when it was dropped. Begins the next one.
  std::optional<std::string> take();

 private:
  void makeRoomFor(std::size_t count);

  std::string bytes_;
  bool dropped_ = false;
};

}  // namespace quorvel
