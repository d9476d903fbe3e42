// The built library, loaded into this process.
#pragma once

#include <cstdint>
#include <string>

#include "tests/rig/Patience.h"
#include "tests/rig/Process.h"
#include "tools/common/ComponentHost.h"

namespace rig {

// Paths of the built library, the tools and the script that frames a line, from the environment
// that ctest sets; without it they throw std::runtime_error.
std::string libraryPath();
std::string englishLibraryPath();  // the library in a process that starts English
std::string hostPath();
std::string scannerPath();
std::string frameLinePath();

// The library and one component of it.
struct Driver {
  explicit Driver(const std::u16string& className = u"InputDevice",
                  const std::string& libraryFile = libraryPath());

  // Sets the port and opens it; the test fails when it cannot be opened.
  std::u16string openPort(std::int32_t port);

  // The same for a keyboard, by its name in the form.
  std::u16string openKeyboard(const std::u16string& name);

  // The next event; the test fails when none comes.
  terminal::Event event();

  terminal::ComponentLibrary library;
  terminal::Component component;
};

}  // namespace rig
