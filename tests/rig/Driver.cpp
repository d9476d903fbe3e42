#include "tests/rig/Driver.h"

#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "tools/common/HostText.h"

namespace rig {
namespace {

std::string fromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  if (!value) throw std::runtime_error(std::string(name) + " is not set: run the test by ctest");
  return value;
}

std::size_t entriesOf(const char* folder) {
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) ++entries;
  return entries;
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

std::size_t threadCount() { return entriesOf("/proc/self/task"); }
std::size_t descriptorCount() { return entriesOf("/proc/self/fd"); }

std::size_t heapBytes() { return mallinfo2().uordblks; }

}  // namespace rig
