#include "dialog/LoneKeys.h"

namespace quorvel {
namespace {

std::int32_t between(std::uint32_t earlier, std::uint32_t later) {
  return static_cast<std::int32_t>(later - earlier);
}

}  // namespace

bool LoneKeys::note(const KeyEvent& event) {
  if (disturbs(event)) press_.reset();
  const bool mayBeAlone = event.isPress && !event.isChordKey && followsAPause(event);
  if (mayBeAlone) press_ = event;
  lastEvent_ = event.time;
  if (!event.isChordKey) {
    lastInChord_ = event.time;
  } else if (event.isPress) {
    lastInChord_.reset();
  }
  return mayBeAlone;
}

bool LoneKeys::isAfterPause(std::uint32_t press, std::uint32_t next) {
  return between(press, next) > kAfter;
}

// The key's own release does not, nor do those of Alt and Control after a chord.
bool LoneKeys::disturbs(const KeyEvent& event) const {
  if (!press_ || isAfterPause(press_->time, event.time)) return false;
  if (press_->inChord && event.isChordKey) return false;
  return event.isPress || event.key != press_->key;
}

// Alt or Control may go down right before the key, and even right after another key.
bool LoneKeys::followsAPause(const KeyEvent& event) const {
  const std::optional<std::uint32_t>& last = event.inChord ? lastInChord_ : lastEvent_;
  return !last || between(*last, event.time) > kBefore;
}

}  // namespace quorvel
