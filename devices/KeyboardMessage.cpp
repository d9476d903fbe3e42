#include "devices/KeyboardMessage.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include <cstdlib>

#include "devices/NonPrintableKeys.h"

namespace quorvel {
namespace {

constexpr char kGroupSeparatorByte = 29;

// The last byte of the suffix in the host's encoding.
char endByteOf(const std::wstring& suffix) {
  constexpr char kCarriageReturn = '\r';
  char bytes[10];
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the C library of Linux keeps no state here
  const std::size_t count = std::wcstombs(bytes, suffix.c_str(), sizeof(bytes));
  return count == 0 || count == static_cast<std::size_t>(-1) ? kCarriageReturn : bytes[count - 1];
}

}  // namespace

KeyboardMessage::KeyboardMessage(const InputDeviceKeyboardFactory& factory,
                                 const XConnection& connection)
    : connection_(connection),
      endByte_(endByteOf(factory.suffix)),
      groupSeparator_(NonPrintableKeys::getKeyLinuxData(factory.gsSymbolKey)),
      listenOnly_(factory.listenOnly) {}

std::optional<std::string> KeyboardMessage::add(const XIDeviceEvent& key) {
  const TypedKey typed = translate(key);
  if (typed.keysym == NoSymbol) return {};
  if (isGroupSeparator(typed.keysym, key.mods.base)) {
    bytes_.append(kGroupSeparatorByte);
    return {};
  }
  if (listenOnly_) {
    const std::string name = NonPrintableKeys::getKeyShortName(typed.keysym);
    if (!name.empty()) {
      bytes_.append(name);
      return {};
    }
  }
  if (typed.byte == endByte_) return end();
  if (typed.byte) bytes_.append(*typed.byte);
  return {};
}

KeyboardMessage::TypedKey KeyboardMessage::translate(const XIDeviceEvent& key) const {
  const auto modifiers = static_cast<unsigned>(key.mods.base);
  KeySym keysym = NoSymbol;
  char text[100] = {};
  int count = 0;
  connection_.call([&](Display* display) {
    keysym = XkbKeycodeToKeysym(display, static_cast<KeyCode>(key.detail), 0,
                                static_cast<int>(modifiers & ShiftMask));
    KeySym symbol = keysym;
    int missing = 0;
    count = XkbTranslateKeySym(display, &symbol, modifiers, text, sizeof(text), &missing);
  });
  return {.keysym = keysym, .byte = count > 0 ? std::optional(text[0]) : std::nullopt};
}

bool KeyboardMessage::isGroupSeparator(KeySym keysym, int modifiers) const {
  return (keysym == XK_bracketright && (modifiers & ControlMask)) || keysym == XK_F8 ||
         keysym == groupSeparator_;
}

std::optional<std::string> KeyboardMessage::end() {
  if (listenOnly_) bytes_.append(endByte_);
  return bytes_.take();
}

}  // namespace quorvel
