// Typing, the way a keyboard-wedge scanner does.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace terminal {

// A key by its position on a PC keyboard: the key codes that X servers on Linux use (the kernel's
// code plus 8). The server's layout decides what the key means.
enum class Key : std::uint8_t {
  kTab = 23,
  kReturn = 36,
  kLeftControl = 37,
  kLeftShift = 50,
  kCapsLock = 66,
  kF1 = 67,
  kF2,
  kF3,
  kF4,
  kF5,
  kF6,
  kF7,
  kF8,
  kF9,
  kF10,
  kF11 = 95,
  kF12,
  kKeypadEnter = 104,
  kRightAlt = 108,
  kHome = 110,
  kPageUp = 112,
  kEnd = 115,
  kPageDown = 117,
  kInsert,
  kDelete,
};

// A keyboard whose keys this program presses.
class VirtualKeyboard {
 public:
  virtual ~VirtualKeyboard() = default;

  // Both may return before the X server has processed the key. Throw std::system_error when the
  // keyboard is gone.
  virtual void press(Key key) = 0;
  virtual void release(Key key) = 0;
};

// A keyboard of an X server's `inputtest` driver, reached through the socket at `socketPath`. The
// driver serves only the first connection ever made. Throws std::system_error when it cannot be
// reached or does not answer.
std::unique_ptr<VirtualKeyboard> connectInputTestKeyboard(const std::string& socketPath);

// Presses and releases `key`, with `modifier` held.
void tap(VirtualKeyboard& keyboard, Key key);
void tapWith(VirtualKeyboard& keyboard, Key modifier, Key key);

// A key, and the modifier held with it.
struct Stroke {
  Key key;
  std::optional<Key> modifier;
};

// The stroke that types a character on the US layout: printable ASCII, tab, carriage return or line
// feed (Return), and the group separator (Control and right bracket). Empty for any other
// character.
std::optional<Stroke> strokeFor(char character);

// Types `text` as a scanner set to the US layout does. Throws std::invalid_argument, before any key
// is pressed, if no key types one of the characters.
void type(VirtualKeyboard& keyboard, std::string_view text);

}  // namespace terminal
