// The two languages of the driver's texts.
#pragma once

#include <string_view>

namespace quorvel {

// The numbers are those of the process-wide locale setting.
enum class Language : unsigned { kRussian = 0, kEnglish = 1 };

// The language of a locale number. An unknown number means Russian.
constexpr Language languageOfLocale(unsigned locale) {
  return locale == static_cast<unsigned>(Language::kEnglish) ? Language::kEnglish
                                                             : Language::kRussian;
}

// For the interfaces that ask for the language with a flag.
constexpr Language languageOf(bool russian) {
  return russian ? Language::kRussian : Language::kEnglish;
}

// A text in both languages.
template <typename Text>
struct BasicBilingual {
  Text russian;
  Text english;

  constexpr Text in(Language language) const {
    return language == Language::kEnglish ? english : russian;
  }
};

// Zero-terminated, as the conversions to host strings need it.
using Bilingual = BasicBilingual<const wchar_t*>;
using BilingualUtf8 = BasicBilingual<std::string_view>;

}  // namespace quorvel
