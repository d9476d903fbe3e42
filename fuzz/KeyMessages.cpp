// A keyboard that types any keys, against a model of what makes a message.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "devices/InputDeviceFactories.h"
#include "devices/KeyboardMessage.h"
#include "devices/XConnection.h"
#include "fuzz/Require.h"

namespace {

// A key that is pressed, and what the X server's keyboard map makes of it.
struct TypedKey {
  int modifiers;
  KeySym symbol;
  std::string text;
};
TypedKey key;

struct SpecialKey {
  KeySym symbol;
  const char* name;
};
constexpr SpecialKey kSpecialKeys[] = {
    {0xFFBE, "'F1'"},        {0xFFBF, "'F2'"},     {0xFFC0, "'F3'"},       {0xFFC1, "'F4'"},
    {0xFFC2, "'F5'"},        {0xFFC3, "'F6'"},     {0xFFC4, "'F7'"},       {0xFFC5, "'F8'"},
    {0xFFC6, "'F9'"},        {0xFFC7, "'F10'"},    {0xFFC8, "'F11'"},      {0xFFC9, "'F12'"},
    {0xFF63, "'INSERT'"},    {0xFFFF, "'DELETE'"}, {0xFF50, "'HOME'"},     {0xFF57, "'END'"},
    {0xFF55, "'PgUp'"},      {0xFF56, "'PgDn'"},   {0xFFE5, "'CAPSLOCK'"}, {0xFFEA, "'RIGHT_ALT'"},
    {0xFF8D, "'CR(Numpad)'"}};
constexpr KeySym kBracket = 0x5D;
constexpr KeySym kF8 = 0xFFC5;
constexpr int kControl = 4;
constexpr char kGroupSeparator = 29;

TypedKey anyKey(FuzzedDataProvider& input) {
  TypedKey any;
  any.modifiers = input.ConsumeIntegral<std::uint8_t>();
  const int kind = input.ConsumeIntegralInRange(0, 3);
  if (kind == 0) any.symbol = input.PickValueInArray(kSpecialKeys).symbol;
  if (kind == 1) any.symbol = kBracket;
  if (kind == 2) any.symbol = input.ConsumeIntegral<std::uint8_t>();
  if (kind == 3) any.symbol = input.ConsumeIntegral<std::uint32_t>();
  any.text = input.ConsumeBytesAsString(input.ConsumeIntegralInRange<std::size_t>(0, 3));
  return any;
}

// What a scanner types, as this program's users know it.
class Model {
 public:
  explicit Model(const quorvel::InputDeviceKeyboardFactory& factory)
      : listenOnly_(factory.listenOnly) {
    const std::wstring suffix = factory.suffix.substr(0, 10);
    if (!suffix.empty()) end_ = static_cast<char>(suffix.back());
    const int number = factory.gsSymbolKey;
    if (number >= 0 && number < static_cast<int>(std::size(kSpecialKeys))) {
      separator_ = kSpecialKeys[number].symbol;
    }
  }

  std::optional<std::string> press(const TypedKey& pressed) {
    if (pressed.symbol == 0) return {};
    if (pressed.symbol == kF8 || pressed.symbol == separator_ ||
        (pressed.symbol == kBracket && (pressed.modifiers & kControl))) {
      bytes_ += kGroupSeparator;
      return {};
    }
    for (const SpecialKey& special : kSpecialKeys) {
      if (!listenOnly_ || special.symbol != pressed.symbol) continue;
      bytes_ += special.name;
      return {};
    }
    if (pressed.text.empty()) return {};
    if (pressed.text[0] != end_) {
      bytes_ += pressed.text[0];
      return {};
    }
    if (listenOnly_) bytes_ += end_;
    std::string message;
    message.swap(bytes_);
    return message;
  }

 private:
  const bool listenOnly_;
  char end_ = '\r';
  KeySym separator_ = 0;
  std::string bytes_;
};

}  // namespace

// These replace Xlib's. There is no X server; Xlib's own part of a display is never looked at.
extern "C" Display* XOpenDisplay(const char*) {
  alignas(std::max_align_t) static char display[1 << 16];
  return reinterpret_cast<Display*>(display);
}
extern "C" int XCloseDisplay(Display*) { return 0; }
extern "C" KeySym XkbKeycodeToKeysym(Display*, KeyCode, int group, int level) {
  require(group == 0 && level == (key.modifiers & ShiftMask));
  return key.symbol;
}
extern "C" int XkbTranslateKeySym(Display*, KeySym* symbol, unsigned modifiers, char* buffer,
                                  int size, int* extra) {
  require(*symbol == key.symbol && modifiers == static_cast<unsigned>(key.modifiers));
  require(static_cast<std::size_t>(size) >= key.text.size() && extra);
  key.text.copy(buffer, key.text.size());
  return static_cast<int>(key.text.size());
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const quorvel::XConnection connection = quorvel::XConnection::open();
  require(static_cast<bool>(connection));
  FuzzedDataProvider input(data, size);
  quorvel::InputDeviceKeyboardFactory factory;
  factory.listenOnly = input.ConsumeBool();
  factory.gsSymbolKey =
      static_cast<decltype(factory.gsSymbolKey)>(input.ConsumeIntegralInRange(-2, 22));
  factory.suffix.clear();
  // Letters of any encoding would depend on the locale.
  for (int left = input.ConsumeIntegralInRange(0, 12); left > 0; --left) {
    factory.suffix += static_cast<wchar_t>(input.ConsumeIntegralInRange(1, 0x7F));
  }
  quorvel::KeyboardMessage message(factory, connection);
  Model model(factory);
  while (input.remaining_bytes() > 0) {
    key = anyKey(input);
    XIDeviceEvent event = {};
    event.detail = 10;
    event.mods.base = key.modifiers;
    require(message.add(event) == model.press(key));
  }
  return 0;
}
