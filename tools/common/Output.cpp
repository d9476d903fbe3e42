#include "tools/common/Output.h"

#include <cerrno>
#include <iostream>
#include <system_error>

#include "tools/common/Language.h"

namespace terminal {
namespace {

constexpr Text kCannotWrite = {"cannot write the output", "не удалось записать вывод"};

}  // namespace

void flushOutput() {
  errno = 0;
  std::cout.flush();
  if (std::cout) return;
  const int error = errno ? errno : EIO;
  std::cout.clear();
  throw std::system_error(error, std::generic_category(), say(kCannotWrite));
}

void write(std::string_view text) {
  std::cout << text;
  flushOutput();
}

void writeLine(std::string_view line) {
  std::cout << line << '\n';
  flushOutput();
}

}  // namespace terminal
