#include "tools/common/KeyTyping.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "tools/common/Language.h"
#include "util/Handles.h"

namespace terminal {
namespace {

constexpr Text kKeyboard = {"keyboard", "клавиатура"};

// The inputtest driver's messages, in their wire format.
enum class MessageType : std::uint32_t { kServerVersion = 0, kClientVersion = 0, kKey = 5 };

struct Version {
  std::uint32_t length = sizeof(Version);
  MessageType type = MessageType::kClientVersion;
  std::uint16_t major = 1;
  std::uint16_t minor = 0;
};

struct KeyEvent {
  std::uint32_t length = sizeof(KeyEvent);
  MessageType type = MessageType::kKey;
  std::int32_t keyCode;
  std::uint32_t isPress;
};

static_assert(sizeof(Version) == 12 && sizeof(KeyEvent) == 16);

[[noreturn]] void throwErrno(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

class InputTestKeyboard final : public VirtualKeyboard {
 public:
  explicit InputTestKeyboard(const std::string& path) {
    if (!socket_) throwErrno(errno, "socket");
    connectTo(path);
    send(Version());
    // The driver accepts a second connection but never answers it.
    const timeval patience{.tv_sec = 5, .tv_usec = 0};
    setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    Version answer;
    const ssize_t received = recv(socket_.get(), &answer, sizeof(answer), MSG_WAITALL);
    if (received < 0) throwErrno(errno == EAGAIN ? ETIMEDOUT : errno, path);
    if (received != sizeof(answer) || answer.type != MessageType::kServerVersion) {
      throwErrno(EPROTO, path);
    }
  }

  void press(Key key) override { send(KeyEvent{.keyCode = static_cast<int>(key), .isPress = 1}); }
  void release(Key key) override { send(KeyEvent{.keyCode = static_cast<int>(key), .isPress = 0}); }

 private:
  void connectTo(const std::string& path) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (path.size() >= sizeof(address.sun_path)) throwErrno(ENAMETOOLONG, path);
    path.copy(address.sun_path, path.size());
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    if (connect(socket_.get(), generic, sizeof(address)) != 0) throwErrno(errno, path);
  }

  template <typename Message>
  void send(const Message& message) {
    // Never partial: a message is far smaller than the socket's buffer, and the driver keeps up.
    const ssize_t sent = ::send(socket_.get(), &message, sizeof(message), MSG_NOSIGNAL);
    if (sent != sizeof(message)) throwErrno(sent < 0 ? errno : EIO, say(kKeyboard));
  }

  quorvel::FileDescriptor socket_{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

// Neighbouring keys: their characters without and with Shift.
struct Row {
  std::uint8_t firstCode;
  std::string_view plain;
  std::string_view shifted;
};
constexpr Row kUsRows[] = {
    {10, "1234567890-=", "!@#$%^&*()_+"},
    {24, "qwertyuiop[]", "QWERTYUIOP{}"},
    {38, "asdfghjkl;'`", "ASDFGHJKL:\"~"},
    {51, "\\zxcvbnm,./", "|ZXCVBNM<>?"},
    {65, " ", ""},
};

constexpr Key kRightBracket{35};

struct ControlCharacter {
  char character;
  Stroke stroke;
};
constexpr ControlCharacter kControlCharacters[] = {
    {'\t', {Key::kTab, {}}},
    {'\n', {Key::kReturn, {}}},
    {'\r', {Key::kReturn, {}}},
    {'\x1D', {kRightBracket, Key::kLeftControl}},
};

}  // namespace

std::unique_ptr<VirtualKeyboard> connectInputTestKeyboard(const std::string& socketPath) {
  return std::make_unique<InputTestKeyboard>(socketPath);
}

std::optional<Stroke> strokeFor(char character) {
  for (const Row& row : kUsRows) {
    for (const bool shift : {false, true}) {
      const std::size_t place = (shift ? row.shifted : row.plain).find(character);
      if (place == std::string_view::npos) continue;
      return Stroke{static_cast<Key>(row.firstCode + place),
                    shift ? std::optional(Key::kLeftShift) : std::nullopt};
    }
  }
  for (const auto& [control, stroke] : kControlCharacters) {
    if (control == character) return stroke;
  }
  return std::nullopt;
}

void tap(VirtualKeyboard& keyboard, Key key) {
  keyboard.press(key);
  keyboard.release(key);
}

void tapWith(VirtualKeyboard& keyboard, Key modifier, Key key) {
  keyboard.press(modifier);
  tap(keyboard, key);
  keyboard.release(modifier);
}

void type(VirtualKeyboard& keyboard, std::string_view text) {
  std::vector<Stroke> strokes;
  for (const char character : text) {
    const std::optional<Stroke> stroke = strokeFor(character);
    if (!stroke) throw std::invalid_argument("no key types a character of the text");
    strokes.push_back(*stroke);
  }
  for (const auto& [key, modifier] : strokes) {
    modifier ? tapWith(keyboard, *modifier, key) : tap(keyboard, key);
  }
}

}  // namespace terminal
