#include "tools/host/KeyboardWatch.h"

#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput2.h>
#include <X11/keysym.h>
#include <poll.h>

#include <algorithm>
#include <array>

#include "tools/common/KeyTyping.h"
#include "tools/host/KeyboardExamination.h"
#include "tools/host/TimeLeft.h"

namespace terminal {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr char kGroupSeparator = 29;
// A wireless scanner may pause within a scan.
constexpr milliseconds kKeySilence{1500};

// Keys that type no character, in the order of the values of GSSymbolKey.
constexpr KeySym kSeparatorKeys[] = {
    XK_F1,   XK_F2,  XK_F3,      XK_F4,        XK_F5,        XK_F6,     XK_F7,
    XK_F8,   XK_F9,  XK_F10,     XK_F11,       XK_F12,       XK_Insert, XK_Delete,
    XK_Home, XK_End, XK_Page_Up, XK_Page_Down, XK_Caps_Lock, XK_Alt_R,  XK_KP_Enter};

// The place of a key among them; -1 for none.
int separatorNumber(KeySym keysym) {
  const auto* const found = std::find(std::begin(kSeparatorKeys), std::end(kSeparatorKeys), keysym);
  return found == std::end(kSeparatorKeys) ? -1 : static_cast<int>(found - kSeparatorKeys);
}

// The character that the key types on a US keyboard; 0 for a key that types none.
char usCharacter(int keyCode, bool shift) {
  for (char character = ' '; character <= '~'; ++character) {
    const std::optional<Stroke> stroke = strokeFor(character);
    if (stroke && static_cast<int>(stroke->key) == keyCode &&
        stroke->modifier.has_value() == shift) {
      return character;
    }
  }
  return 0;
}

bool isModifier(KeySym keysym) { return IsModifierKey(keysym) && keysym != XK_Caps_Lock; }

class GrabbedKeyboard {
 public:
  GrabbedKeyboard(XDisplay& display, int device) : display_(display), device_(device) {
    grabKeyboard(display_, device_);
  }
  ~GrabbedKeyboard() {
    if (display_) ungrabKeyboard(display_, device_);
  }
  GrabbedKeyboard(const GrabbedKeyboard&) = delete;
  GrabbedKeyboard& operator=(const GrabbedKeyboard&) = delete;

 private:
  XDisplay& display_;
  const int device_;
};

// Makes of keys what the component does.
class KeyReader {
 public:
  KeyReader(XDisplay& display, const DriverSettings& settings)
      : display_(display), settings_(settings) {
    const std::string end = settings.endByte();
    if (!end.empty()) endByte_ = end.back();
  }

  const KeySample& sample() const { return sample_; }

  // Takes the keys that have come; whether there were any.
  bool takeAll() {
    bool any = false;
    while (display_ && !sample_.hasEnd && XEventsQueued(display_.get(), QueuedAfterReading) > 0) {
      XEvent event;
      XNextEvent(display_.get(), &event);
      if (event.type != GenericEvent || !XGetEventData(display_.get(), &event.xcookie)) continue;
      if (event.xcookie.evtype == XI_KeyPress) {
        if (!any && sample_.bytes.empty()) sample_.focus = focusWarnings(display_);
        take(*static_cast<const XIDeviceEvent*>(event.xcookie.data));
        any = true;
      }
      XFreeEventData(display_.get(), &event.xcookie);
    }
    return any;
  }

 private:
  void take(const XIDeviceEvent& key) {
    const auto modifiers = static_cast<unsigned>(key.mods.base);
    const bool shift = (modifiers & ShiftMask) != 0;
    const KeySym keysym =
        XkbKeycodeToKeysym(display_.get(), static_cast<KeyCode>(key.detail), 0, shift ? 1 : 0);
    if (isGroupSeparator(keysym, modifiers)) {
      sample_.bytes += kGroupSeparator;
      return;
    }
    const char us = modifiers & ControlMask ? '\0' : usCharacter(key.detail, shift);
    std::array<char, 100> text = {};
    KeySym translated = keysym;
    const int length = XkbTranslateKeySym(display_.get(), &translated, modifiers, text.data(),
                                          static_cast<int>(text.size()), nullptr);
    // The first byte is what the component takes of a character.
    if (us != 0 && (length <= 0 || text[0] != us)) sample_.isForeign = true;
    if (length > 0) {
      sample_.bytes += text[0];
      sample_.hasEnd = text[0] == endByte_;
    } else if (const int number = separatorNumber(keysym); number >= 0 && !isModifier(keysym)) {
      sample_.separatorKey = number;
    }
  }

  bool isGroupSeparator(KeySym keysym, unsigned modifiers) const {
    const int configured = settings_.gsSymbolKey;
    return (keysym == XK_bracketright && (modifiers & ControlMask)) || keysym == XK_F8 ||
           (configured >= 0 && configured == separatorNumber(keysym));
  }

  XDisplay& display_;
  const DriverSettings& settings_;
  char endByte_ = '\r';
  KeySample sample_;
};

}  // namespace

KeySample takeKeys(XDisplay& display, int device, const DriverSettings& settings,
                   milliseconds patience, const EndSignals& end,
                   const std::function<void(std::chrono::seconds left)>& waiting) {
  const GrabbedKeyboard grabbed(display, device);
  KeyReader reader(display, settings);
  Clock::time_point last = Clock::now() + patience;
  bool anyCame = false;
  while (display && !reader.sample().hasEnd) {
    if (!anyCame) waiting(std::chrono::ceil<std::chrono::seconds>(timeUntil(last)));
    XFlush(display.get());
    if (reader.takeAll()) {
      anyCame = true;
      last = Clock::now() + kKeySilence;
      continue;
    }
    const milliseconds left = timeUntil(last);
    if (left.count() == 0) break;
    pollfd waits[] = {{ConnectionNumber(display.get()), POLLIN, 0}, {end.descriptor(), POLLIN, 0}};
    if (poll(waits, 2, waitStep(left)) > 0 && waits[1].revents) {
      break;
    }
  }
  return reader.sample();
}

}  // namespace terminal
