// The conversions of scanned bytes, there and back.
#include <cstdint>
#include <string>

#include "fuzz/Require.h"
#include "util/Base64.h"
#include "util/CodePages.h"
#include "util/DeviceNames.h"
#include "util/HumanReadable.h"
#include "util/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvel;
  const std::string bytes(reinterpret_cast<const char*>(data), size);

  require(base64_decode(base64_encode(bytes)) == bytes);
  base64_decode(bytes);

  // The human-readable form has visible characters only.
  for (const char byte : raw2HRS(bytes)) require(byte > ' ' && byte <= '~');

  const std::wstring text = str2wstr(bytes);
  require(str2wstr(wstr2str(text)) == text);
  require(wba2ba(ba2wba(bytes)) == wstr2str(text));
  // What is trimmed or replaced leaves nothing to trim or to replace.
  require(trimed(trimed(bytes)) == trimed(bytes));
  require(trimed(trimed(text)) == trimed(text));
  require(replace(bytes, "a", "").find('a') == bytes.npos);
  require(replace(text, L"a", L"b").find(L'a') == text.npos);
  require(str_tolower(str_tolower(bytes)) == str_tolower(bytes));
  require(str_tolower(text).size() == text.size());
  for (const wchar_t character : raw2Printable(text)) require(character >= L' ');
  raw2HRS(text);
  hrs2Raw(text);
  wchar_t buffer[16];
  require(hrs2Raw(buffer, text, 16) <= 16);

  ConvertMbsToWcs(bytes, kEncodingUtf8.data());
  ConvertMbsToWcs(bytes, kEncodingWindows1251.data());
  ConvertUTF8Input(bytes.c_str());

  std::string name = bytes;
  require(TrimXMLIllegalChars(name) && name.size() == bytes.size());
  return 0;
}
