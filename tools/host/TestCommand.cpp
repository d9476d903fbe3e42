#include <dlfcn.h>

#include <stdexcept>

#include "tools/host/Commands.h"
#include "tools/host/XDisplay.h"

namespace terminal {
namespace {

constexpr Text kTestNoArguments = {"test takes no arguments", "test не принимает аргументов"};
constexpr Text kNoDisplayForTest = {"there is no X display to show the window on",
                                    "нет X-дисплея, чтобы показать окно"};
constexpr Text kNotTested = {"the component did not run the test", "компонента не выполнила тест"};

constexpr Text kNoGtk = {
    "the window needs libgtk-x11-2.0.so.0 (GTK+ 2) in this program's word size, which is not "
    "installed",
    "окну нужна библиотека libgtk-x11-2.0.so.0 (GTK+ 2) той же разрядности, что и эта программа, а "
    "она не установлена"};

// Without it the component reports success, and shows no window.
bool hasGtk() { return dlopen("libgtk-x11-2.0.so.0", RTLD_LAZY | RTLD_NOLOAD) != nullptr; }

}  // namespace

const Text kTestHelp = {
    R"(usage: quorvel-host test

Opens the component's test window, which lists what every serial port and every keyboard
sends, and ends when it is closed. Needs an X display.
)",
    R"(запуск: quorvel-host test

Открывает окно теста компоненты, в котором видно, что шлют все последовательные порты и
клавиатуры, и заканчивает работу, когда окно закрыто. Нужен X-дисплей.
)"};

int runTest(ComponentLibrary& library, const Arguments& arguments) {
  if (!readOptions(arguments, {}).empty()) throw UsageError(say(kTestNoArguments));
  // Without one the component reports success, and shows no window.
  if (!XDisplay()) throw std::runtime_error(say(kNoDisplayForTest));
  Component component(library, u"InputDevice");
  component.object().SetLocale(userLocale());
  if (!component.test()) throw std::runtime_error(say(kNotTested));
  // Only now, because the component is to open it by itself.
  if (!hasGtk()) throw std::runtime_error(say(kNoGtk));
  return 0;
}

}  // namespace terminal
