// The rows of the test window, for any scan from any source.
#include "dialog/RowTexts.h"

#include <boost/locale/utf.hpp>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "util/Base64.h"
#include "util/Text.h"

namespace {

bool isUtf8(std::string_view text) {
  namespace utf = boost::locale::utf;
  for (const char* at = text.data(); at != text.data() + text.size();) {
    const auto code = utf::utf_traits<char>::decode(at, text.data() + text.size());
    if (code == utf::illegal || code == utf::incomplete) return false;
  }
  return true;
}

void requireCell(std::string_view cell) {
  require(cell.size() < quorvel::kCellSize);
  require(isUtf8(cell));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvel;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  // A scan, again and again, until it fills a cell.
  std::string scan = bytes;
  while (!bytes.empty() && scan.size() < 2 * kCellSize) scan += bytes;
  for (const int dataType : {0, 1, 2, 3}) {
    requireCell(dataCell(str2wstr(base64_encode(bytes)), dataType));
    requireCell(dataCell(str2wstr(base64_encode(scan)), dataType));
  }
  const std::string source = sourceCell(str2wstr(scan));
  requireCell(source);
  require(source.back() == ':');
  for (std::size_t most = 0; most < 8; ++most) {
    const std::string_view cut = cutToBytes(bytes, most);
    require(cut.size() <= most && bytes.starts_with(cut));
  }
  return 0;
}
