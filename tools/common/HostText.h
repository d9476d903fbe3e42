// Conversions between the host's UTF-16 texts and the UTF-8 of terminals and files.
#pragma once

#include <boost/locale/encoding_utf.hpp>
#include <string>
#include <string_view>

#include "host/Variant.h"

namespace terminal {

// Invalid sequences are skipped.
inline std::string toUtf8(std::u16string_view text) {
  return boost::locale::conv::utf_to_utf<char>(text.data(), text.data() + text.size());
}
inline std::u16string toHostText(std::string_view utf8) {
  return boost::locale::conv::utf_to_utf<char16_t>(utf8.data(), utf8.data() + utf8.size());
}

// A copy of a host text; empty for a null pointer.
inline std::u16string copyOf(const WCHAR_T* text) { return text ? text : u""; }

}  // namespace terminal
