#include "util/Text.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/locale/encoding_utf.hpp>
#include <ctime>
#include <type_traits>

namespace quorvel {
namespace {

constexpr std::size_t kTimeBufferSize = 256;

template <typename String>
String trimInPlace(String& text) {
  boost::algorithm::trim_right(text);
  boost::algorithm::trim_left(text);
  return text;
}

template <typename String>
String replaceAll(const String& text, const String& what, const String& with) {
  if (text.empty() || what.empty()) return text;
  String result;
  std::size_t begin = 0;
  for (std::size_t found; (found = text.find(what, begin)) != String::npos;
       begin = found + what.size()) {
    result.append(text, begin, found - begin).append(with);
  }
  return result.append(text, begin);
}

// ASCII is the same in every form of Unicode, and is what scans mostly are: a copy is enough.
template <typename Character>
bool isAscii(const std::basic_string<Character>& text) {
  return std::all_of(text.begin(), text.end(), [](Character character) {
    return static_cast<std::make_unsigned_t<Character>>(character) < 0x80;
  });
}

template <typename To, typename From>
std::basic_string<To> convertUtf(const std::basic_string<From>& text) {
  if (isAscii(text)) return std::basic_string<To>(text.begin(), text.end());
  return boost::locale::conv::utf_to_utf<To>(text);
}

}  // namespace

std::string trim(std::string& text) { return trimInPlace(text); }
std::wstring trim(std::wstring& text) { return trimInPlace(text); }

std::string trimed(const std::string& text) { return boost::algorithm::trim_copy(text); }
std::wstring trimed(const std::wstring& text) { return boost::algorithm::trim_copy(text); }

std::string replace(const std::string& text, const std::string& what, const std::string& with) {
  return replaceAll(text, what, with);
}
std::wstring replace(const std::wstring& text, const std::wstring& what, const std::wstring& with) {
  return replaceAll(text, what, with);
}

std::string str_tolower(const std::string& text) { return boost::algorithm::to_lower_copy(text); }
std::wstring str_tolower(const std::wstring& text) { return boost::algorithm::to_lower_copy(text); }

std::string wstr2str(const std::wstring& text) { return convertUtf<char>(text); }
std::string wstrtostr(const std::wstring& text) { return wstr2str(text); }
std::string wba2ba(const std::wstring& text) { return wstr2str(text); }

std::wstring str2wstr(const std::string& text) { return convertUtf<wchar_t>(text); }
std::wstring strtowstr(const std::string& text) { return str2wstr(text); }
std::wstring ba2wba(const std::string& text) { return str2wstr(text); }

std::wstring int_to_wstr(int number) { return std::to_wstring(number); }

std::string getCurrentTimeString(const std::string& format) {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  localtime_r(&now, &local);
  std::string buffer(kTimeBufferSize, '\0');
  if (std::strftime(buffer.data(), buffer.size(), format.c_str(), &local) == 0) return {};
  return buffer;
}

}  // namespace quorvel
