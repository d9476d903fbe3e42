#include "dialog/RowTexts.h"

#include "util/OutputData.h"
#include "util/SymbolNames.h"
#include "util/Text.h"

namespace quorvel {
namespace {

constexpr std::size_t kMostBytes = kCellSize - 1;

constexpr bool isContinuation(char byte) { return (byte & 0xC0) == 0x80; }

}  // namespace

std::string_view cutToBytes(std::string_view utf8, std::size_t most) {
  if (utf8.size() <= most) return utf8;
  while (most > 0 && isContinuation(utf8[most])) --most;
  return utf8.substr(0, most);
}

std::string sourceCell(const std::wstring& source) {
  return std::string(cutToBytes(wstr2str(source), kMostBytes - 1)) + ':';
}

std::string dataCell(const std::wstring& base64, int dataType) {
  std::wstring shown;
  for (const wchar_t symbol : outputData(base64, static_cast<unsigned>(dataType))) {
    shown += FormatSymbolForDisplay(symbol);
  }
  return std::string(cutToBytes(wstr2str(shown), kMostBytes));
}

}  // namespace quorvel
