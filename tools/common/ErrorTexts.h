// Errors of the system, in the user's language. The C library's own texts follow the process's
// locale, which the tools do not set.
#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace terminal {

// What an errno value means; in Russian a rare one is only a number.
std::string describe(int error);

// The message of an exception; that of a std::system_error with the system's part translated.
std::string messageOf(const std::exception& error);

// Why the loader refused a library, from its own text (dlerror).
std::string whyNotLoaded(const std::string& library, std::string_view loaderText);

}  // namespace terminal
