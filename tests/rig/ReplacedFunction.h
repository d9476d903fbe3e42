// For a function of a program that stands in for a library's of the same name.
#pragma once

#include <dlfcn.h>

#include <string>

namespace rig {

// The one that it hides: a sanitizer's where the sanitizer is linked into the program, otherwise
// that of the library. Null if there is none.
template <typename Function>
Function* replacedFunction(const char* name) {
  const std::string sanitizers = std::string("__interceptor_") + name;
  void* const found = dlsym(RTLD_DEFAULT, sanitizers.c_str());
  return reinterpret_cast<Function*>(found ? found : dlsym(RTLD_NEXT, name));
}

}  // namespace rig
