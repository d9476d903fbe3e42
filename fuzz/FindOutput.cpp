// The settings form for anything that find may print: it can be read, and lists each port once, in
// order.
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "devices/SerialFamilies.h"
#include "fuzz/Require.h"
#include "parameters/LinuxParametersTableBuilder.h"
#include "tools/common/FormDocument.h"
#include "util/Text.h"

namespace {

std::string_view found;  // what find prints

using Choices = std::vector<terminal::FormChoice>;

Choices choicesOf(const std::vector<terminal::FormPage>& pages, std::string_view parameter) {
  for (const terminal::FormGroup& group : pages.at(0).groups) {
    for (const terminal::FormParameter& candidate : group.parameters) {
      if (candidate.name == parameter) return candidate.choices.value();
    }
  }
  throw std::runtime_error("no such parameter");
}

}  // namespace

// Replace the C library's.
extern "C" FILE* popen(const char*, const char*) {
  const int file = memfd_create("find", 0);
  require(write(file, found.data(), found.size()) == static_cast<ssize_t>(found.size()));
  lseek(file, 0, SEEK_SET);
  return fdopen(file, "r");
}
extern "C" int pclose(FILE* file) { return fclose(file); }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool hasNoDisplay = unsetenv("DISPLAY") == 0;
  require(hasNoDisplay);
  if (size == 0) return 0;
  found = {reinterpret_cast<const char*>(data) + 1, size - 1};

  quorvel::LinuxParametersTableBuilder builder(/*russian=*/data[0] % 2 == 0);
  builder.BuildProduct(/*keyboardTimeoutShown=*/false);
  const auto pages = terminal::readForm(quorvel::wstr2str(builder.GetProduct()));
  require(choicesOf(pages, "KeyboardDevice").empty());

  const Choices ports = choicesOf(pages, "Port");
  require(!ports.empty() && ports[0].value == "0");
  auto port = ports.begin() + 1;
  for (const quorvel::SerialFamily& family : quorvel::kSerialFamilies) {
    const std::wstring list =
        builder.GetCOMDevicesList(family.prefix, family.caption, static_cast<int>(family.base));
    // In order, and none twice.
    long long last = -1LL << 40;
    const std::string caption = quorvel::wstr2str(std::wstring(family.caption));
    for (; port != ports.end() && port->text.starts_with(caption); ++port) {
      const long long number = std::stoll(port->value);
      require(number > last);
      require(port->text == caption + std::to_string(number - family.base));
      last = number;
    }
    require(list.empty() == found.empty());
  }
  require(port == ports.end());
  return 0;
}
