// Functions of libraries that most hosts never need: such a library is opened on its first use, and
// the functions are called through variables of their names.
#pragma once

#include <dlfcn.h>

// For tables that list functions as X(name). In namespace quorvel the variables hide the functions
// themselves, so that calls, even those inside a library's own macros, read as always and have the
// types of the library's headers.
// NOLINTBEGIN(bugprone-macro-parentheses): GCC takes parentheses around these names for a mistake.
#define QUORVEL_DECLARE_LATE(name) extern decltype(&::name) name;
#define QUORVEL_DEFINE_LATE(name) decltype(&::name) name = nullptr;
// NOLINTEND(bugprone-macro-parentheses)
#define QUORVEL_RESOLVE_LATE(name) &&quorvel::resolveLate(library, #name, name)

namespace quorvel {

// Opens the shared library of this name, which is then never unloaded. Its symbols stay out of the
// host's sight. Null when it, or a library that it needs, is not there or has functions missing.
// Any thread.
inline void* openForGood(const char* library) {
  return dlopen(library, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
}

// Sets `function` to the library's function of this name, or one of a library that it needs. False,
// with null, when there is none.
template <typename Function>
bool resolveLate(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(library, name));
  return function != nullptr;
}

}  // namespace quorvel
