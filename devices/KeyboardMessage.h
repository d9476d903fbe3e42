// The text that a scanner types, one key after another.
#pragma once

#include <X11/extensions/XInput2.h>

#include <optional>
#include <string>

#include "devices/InputDeviceFactories.h"
#include "devices/MessageBytes.h"
#include "devices/XConnection.h"

namespace quorvel {

// Turns keys into bytes and bytes into messages. Used on one thread.
class KeyboardMessage {
 public:
  // `connection` is not empty and outlives this object.
  KeyboardMessage(const InputDeviceKeyboardFactory& factory, const XConnection& connection);

  // Adds what a key that was pressed has typed. When it is the key that ends the message, returns
  // the message's bytes and starts the next message.
  std::optional<std::string> add(const XIDeviceEvent& key);

  // Drops what was typed so far; the next key begins a message.
  void drop() { bytes_.clear(); }

  // Drops the message up to its end byte, because a key of it is missing.
  void dropToEnd() { bytes_.drop(); }

 private:
  struct TypedKey {
    KeySym keysym = NoSymbol;
    std::optional<char> byte;  // none for a key that types nothing
  };
  TypedKey translate(const XIDeviceEvent& key) const;
  bool isGroupSeparator(KeySym keysym, int modifiers) const;
  std::optional<std::string> end();

  const XConnection& connection_;
  char endByte_;
  KeySym groupSeparator_;  // NoSymbol matches no key
  bool listenOnly_;
  MessageBytes bytes_;
};

}  // namespace quorvel
