// What the tools read and show: forms, escapes, the bytes of scans, and lines of any setting.
#include <termios.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "tools/common/CommandLine.h"
#include "tools/common/FormDocument.h"
#include "tools/common/VisibleText.h"
#include "tools/host/LineModel.h"
#include "tools/scanner/ScanSource.h"

namespace {

void readAnyForm(const std::string& document) {
  try {
    terminal::readForm(document);
  } catch (const std::runtime_error& error) {
    require(*error.what() != '\0');
  }
}

void readAnyEscapes(const std::string& text) {
  try {
    require(terminal::unescaped(text).size() <= text.size());
  } catch (const terminal::UsageError&) {
    require(text.find('\\') != text.npos);
  }
  std::string doubled;
  for (const char character : text) doubled.append(character == '\\' ? 2 : 1, character);
  require(terminal::unescaped(doubled) == text);
}

void showAnyText(const std::string& text) {
  for (const char byte : terminal::visible(text)) {
    require(static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F);
  }
  for (const char byte : terminal::withEscapes(text)) {
    require(static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F);
  }
}

void passAnyLine(const std::string& input) {
  termios setting = {};
  std::memcpy(&setting, input.data(), std::min(input.size(), sizeof setting));
  const std::string bytes = input.substr(std::min(input.size(), sizeof setting));
  const terminal::LineOutput output = terminal::throughLine(setting, bytes);
  std::size_t count = output.hidden.size();
  for (const std::string& read : output.available) count += read.size();
  require(count <= bytes.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  readAnyForm(bytes);
  readAnyEscapes(bytes);
  showAnyText(bytes);
  passAnyLine(bytes);
  return 0;
}
