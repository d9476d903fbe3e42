// The tools speak the language of their user: Russian where the locale's language is Russian, else
// English.
#pragma once

namespace terminal {

struct Text {
  const char* english;
  const char* russian;
};

// The text in the user's language, as the environment's LC_ALL, LC_MESSAGES or LANG name it.
const char* say(const Text& text);

// The name of that locale as the host contract knows it: "ru_RU" or "en_US".
const char16_t* userLocale();

}  // namespace terminal
