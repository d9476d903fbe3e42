// The two languages of the driver's texts.
#pragma once

#include <string_view>

namespace quorvel {

// The numbers are those of the process-wide locale setting.
enum class Language : unsigned { kRussian = 0, kEnglish = 1 };

// A text in both languages.
template <typename View>
struct BasicBilingual {
  View russian;
  View english;

  constexpr View in(Language language) const {
    return language == Language::kEnglish ? english : russian;
  }
};

using Bilingual = BasicBilingual<std::wstring_view>;
using BilingualUtf8 = BasicBilingual<std::string_view>;

}  // namespace quorvel
