// The language that the tools speak: Russian in a Russian locale, English in any other.
#pragma once

namespace terminal {

struct Text {
  const char* english;
  const char* russian;
};

// The text in the user's language, taken from the first of LC_ALL, LC_MESSAGES and LANG that is
// set.
const char* say(const Text& text);

// The locale to tell a component: "ru_RU" or "en_US".
const char16_t* userLocale();

}  // namespace terminal
