// Strings and variants with any content that a host may pass.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "fuzz/Require.h"
#include "util/Variants.h"
#include "util/WideStrings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvel;
  std::u16string units(size / 2, u'\0');
  if (!units.empty()) std::memcpy(units.data(), data, units.size() * 2);
  const auto length = static_cast<std::uint32_t>(units.size());

  const std::wstring text = convFromShortWchar(units.c_str(), length);
  require(length == 0 || text.size() == length);
  const WcharWrapper wrapper(text.c_str());
  require(convFromShortWchar(wrapper.shortText()) == text.c_str());

  tVariant variant = emptyVariant();
  std::memcpy(&variant.doubleValue, data, std::min(size, sizeof variant.doubleValue));
  std::int32_t number;
  std::uint32_t word;
  for (std::uint16_t type = 0; type < 32; ++type) {
    variant.vt = type;
    const bool isNumber = convVarToInt(variant, number);
    require(!isNumber || convVarToDWORD(variant, word));
  }
  return 0;
}
