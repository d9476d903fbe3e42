// Makes the process start English. Through the host's interface alone it would stay Russian.
#include "performer/AppSettings.h"

namespace {

const bool started = (quorvel::AppSettings::setLanguage(quorvel::Language::kEnglish), true);

}  // namespace
