#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/KeyTyping.h"
#include "tools/scanner/Commands.h"
#include "tools/scanner/ScanSource.h"
#include "tools/scanner/XTestKeyboard.h"

namespace terminal {
namespace {

constexpr Text kNoKey = {"no key types the character with code ",
                         "нет клавиши для символа с кодом "};

// Types all the bytes; false when a signal asks to end.
bool typeSlowly(VirtualKeyboard& keyboard, const std::string& bytes,
                std::chrono::microseconds pause, const EndSignals& end) {
  for (const char byte : bytes) {
    type(keyboard, std::string_view(&byte, 1));
    if (pause.count() != 0 && end.wait(pause)) return false;
  }
  return true;
}

void requireKeys(const std::string& bytes) {
  for (const char byte : bytes) {
    if (strokeFor(byte)) continue;
    throw UsageError(say(kNoKey) + std::to_string(static_cast<unsigned char>(byte)));
  }
}

}  // namespace

int runKeyboardScanner(const Arguments& arguments) {
  ScanOptions scans;
  std::string socket;
  std::vector<Option> table = scans.table();
  table.push_back({"socket", true, [&](const std::string& value) { socket = value; }});
  const Arguments texts = readOptions(arguments, table);
  const EndSignals end;
  ScanSource source(scans, texts);
  const auto keyboard = socket.empty() ? connectXTestKeyboard() : connectInputTestKeyboard(socket);
  while (const std::optional<std::string> bytes = source.nextBurst(end)) {
    requireKeys(*bytes);
    if (!typeSlowly(*keyboard, *bytes, scans.byteDelay, end) || end.wait(scans.pause)) break;
  }
  return 0;
}

}  // namespace terminal
