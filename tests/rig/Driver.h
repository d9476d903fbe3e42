// The built library, loaded into this process.
#pragma once

#include <cstdint>
#include <string>

#include "tests/rig/Patience.h"
#include "tests/rig/Process.h"
#include "tools/common/ComponentHost.h"

namespace rig {

// Paths of the built library, the tools and the script that frames a line. They come from variables
// that ctest sets; throw std::runtime_error without them.
std::string libraryPath();
std::string englishLibraryPath();  // the library for a process that starts in English
std::string hostPath();
std::string scannerPath();
std::string frameLinePath();

// The library and one component of it.
struct Driver {
  explicit Driver(const std::u16string& className = u"InputDevice",
                  const std::string& libraryFile = libraryPath());

  // Sets the port and opens the device; returns its identifier. The test fails when it cannot.
  std::u16string openPort(std::int32_t port);

  // The same for a keyboard, by its name in the form.
  std::u16string openKeyboard(const std::u16string& name);

  // The next event; the test fails when none comes.
  terminal::Event event();

  terminal::ComponentLibrary library;
  terminal::Component component;
};

}  // namespace rig
