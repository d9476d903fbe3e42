// Telling the keys of a person from those of a scanner.
#pragma once

#include <cstdint>
#include <optional>

namespace quorvel {

// A key going down or up at a server time, in milliseconds, which wraps around.
struct KeyEvent {
  std::uint32_t time;
  unsigned key;  // the hardware's key code
  bool isPress;
  bool isChordKey;  // Alt or Control
  bool inChord;     // another key, while Alt or Control is held
};

// Finds presses that stand alone. A scanner types its keys in quick succession; a person who means
// a single key leaves a pause around it.
class LoneKeys {
 public:
  // The pause around a lone press, in milliseconds.
  static constexpr std::int32_t kBefore = 50;
  static constexpr std::int32_t kAfter = 20;

  static bool isAfterPause(std::uint32_t press, std::uint32_t next);

  // Takes note of an event; to be called for each one in order. True for a press after a pause: ask
  // isAlone when kAfter has passed.
  bool note(const KeyEvent& event);

  // Whether the last press after a pause has been followed by a pause so far.
  bool isAlone() const { return press_.has_value(); }

 private:
  bool disturbs(const KeyEvent& event) const;
  bool followsAPause(const KeyEvent& event) const;

  std::optional<KeyEvent> press_;
  std::optional<std::uint32_t> lastEvent_;
  // Of keys other than Alt and Control, since one of those went down.
  std::optional<std::uint32_t> lastInChord_;
};

}  // namespace quorvel
