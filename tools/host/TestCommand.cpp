#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "tools/host/Commands.h"

namespace terminal {
namespace {

constexpr Text kNoArguments = {"test takes no arguments", "test не принимает аргументов"};
constexpr Text kNoDisplay = {"there is no X display to show the window on (DISPLAY is not set)",
                             "нет X-дисплея, чтобы показать окно (не задана переменная DISPLAY)"};
constexpr Text kNotTested = {"the component did not run the test", "компонента не выполнила тест"};

// The component takes a missing display for a test that is over.
bool hasDisplay() {
  const char* const display = std::getenv("DISPLAY");
  return display && *display;
}

}  // namespace

int runTest(ComponentLibrary& library, const Arguments& arguments) {
  if (!readOptions(arguments, {}).empty()) throw UsageError(say(kNoArguments));
  if (!hasDisplay()) throw std::runtime_error(say(kNoDisplay));
  Component component(library, u"InputDevice");
  component.object().SetLocale(userLocale());
  if (!component.test()) throw std::runtime_error(say(kNotTested));
  return 0;
}

}  // namespace terminal
