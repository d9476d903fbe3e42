#include "tools/common/Language.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace terminal {
namespace {

bool userIsRussian() {
  for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value && *value) return std::strncmp(value, "ru", 2) == 0;
  }
  return false;
}

}  // namespace

const char* say(const Text& text) { return userIsRussian() ? text.russian : text.english; }

const char16_t* userLocale() { return userIsRussian() ? u"ru_RU" : u"en_US"; }

}  // namespace terminal
