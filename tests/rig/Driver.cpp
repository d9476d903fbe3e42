#include "tests/rig/Driver.h"

#include <cstdlib>
#include <stdexcept>

#include "tools/common/HostText.h"

namespace rig {
namespace {

std::string fromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  if (!value) throw std::runtime_error(std::string(name) + " is not set: run the test by ctest");
  return value;
}

}  // namespace

std::string libraryPath() { return fromEnvironment("QUORVEL_LIBRARY"); }
std::string englishLibraryPath() { return fromEnvironment("QUORVEL_ENGLISH_LIBRARY"); }
std::string hostPath() { return fromEnvironment("QUORVEL_HOST"); }
std::string scannerPath() { return fromEnvironment("QUORVEL_SCANNER"); }
std::string frameLinePath() { return fromEnvironment("QUORVEL_FRAME_LINE"); }

Driver::Driver(const std::u16string& className, const std::string& libraryFile)
    : library(libraryFile), component(library, className) {}

std::u16string Driver::openPort(std::int32_t port) {
  component.setParameter(u"Port", port);
  std::optional<std::u16string> id = component.open();
  if (!id) throw std::runtime_error("port " + std::to_string(port) + " cannot be opened");
  return *id;
}

std::u16string Driver::openKeyboard(const std::u16string& name) {
  component.setParameter(u"Port", 0);
  component.setParameter(u"KeyboardDevice", name);
  std::optional<std::u16string> id = component.open();
  if (!id) throw std::runtime_error("keyboard " + terminal::toUtf8(name) + " cannot be opened");
  return *id;
}

terminal::Event Driver::event() {
  std::optional<terminal::Event> event = component.events().take(kPatience);
  if (!event) throw std::runtime_error("no event came");
  return *event;
}

}  // namespace rig
