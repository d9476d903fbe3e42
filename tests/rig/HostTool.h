// quorvel-host as its users run it, and what its doctor finds.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/Program.h"

namespace rig {

// The user's language, where there is no display.
inline const Variables kEnglish = {{"LC_ALL", "C.UTF-8"}, {"DISPLAY", ""}};
inline const Variables kRussian = {{"LC_ALL", "ru_RU.UTF-8"}, {"DISPLAY", ""}};

// An English user of the test's own display, in an X session.
inline const Variables kEnglishOnScreen = {
    {"LC_ALL", "C.UTF-8"}, {"XDG_SESSION_TYPE", "x11"}, {"WAYLAND_DISPLAY", ""}};

// The program with these arguments.
Words hostWords(const Words& arguments);

// The next line that listen writes to its error output, or all that is left of that output, without
// the hint that nothing has come yet: a test on a busy machine may take longer than that silence.
std::string noticeOf(Program& listen);
std::string noticesOf(const Ending& listen);

// What doctor --json found out.
struct Diagnosis {
  int code;  // the exit code
  nlohmann::json object;

  std::vector<std::string> ids() const;
  // Of the first finding; throw std::exception without one.
  std::string text() const;
  std::string remedy() const;
};

// The test fails unless the output is a diagnosis that fits the exit code.
Diagnosis diagnosisOf(const Ending& ending);

}  // namespace rig
