// Through the host's interface alone a process that has started Russian stays Russian. This one
// starts English.
#include "performer/AppSettings.h"

namespace {

const bool started = (quorvel::AppSettings::setLocale(quorvel::kEnglish), true);

}  // namespace
