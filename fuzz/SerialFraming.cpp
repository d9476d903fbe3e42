// A serial port that brings any bytes in any bursts, against a model of what makes a message.
// Of a fortified C library's functions there are definitions already.
#undef _FORTIFY_SOURCE
#include <fuzzer/FuzzedDataProvider.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "devices/InputDeviceFactories.h"
#include "devices/SerialReader.h"
#include "fuzz/Require.h"
#include "util/Base64.h"
#include "util/Text.h"

namespace {

// Any character device that is always readable; what is read comes from the input.
constexpr const char* kDevice = "/dev/null";
constexpr const char* kPort = "/dev/ttyS0";

struct Line {
  std::vector<std::string> bursts;
  std::size_t burst = 0;
  std::size_t byte = 0;
  quorvel::SerialReader* reader = nullptr;
};
Line* line = nullptr;

ssize_t readFromLine(char* byte) {
  if (line->burst < line->bursts.size()) {
    const std::string& burst = line->bursts[line->burst];
    if (line->byte < burst.size()) {
      *byte = burst[line->byte++];
      return 1;
    }
    ++line->burst;
    line->byte = 0;
  } else {
    line->reader->stop();
  }
  errno = EAGAIN;
  return -1;
}

// A burst that ends with the end byte is a message but for the rest of the suffix; what follows the
// last end byte is discarded. Without a suffix the burst is the message.
void addMessages(std::string_view burst, std::string_view suffix,
                 std::vector<std::string>& messages) {
  if (suffix.empty()) {
    if (!burst.empty()) messages.emplace_back(burst);
    return;
  }
  for (std::size_t end; (end = burst.find(suffix.back())) != burst.npos;
       burst.remove_prefix(end + 1)) {
    if (end > 0 && end >= suffix.size() - 1) {
      messages.emplace_back(burst.substr(0, end - (suffix.size() - 1)));
    }
  }
}

}  // namespace

// Replaces the C library's.
extern "C" ssize_t read(int descriptor, void* buffer, std::size_t size) {
  if (line && size == 1) return readFromLine(static_cast<char*>(buffer));
  return syscall(SYS_read, descriptor, buffer, size);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool isPlugged = (std::filesystem::create_symlink(kDevice, kPort), true);
  require(isPlugged);
  FuzzedDataProvider input(data, size);
  const std::string suffix =
      input.ConsumeBytesAsString(input.ConsumeIntegralInRange<std::size_t>(0, 3));
  Line fed;
  while (input.remaining_bytes() > 0) fed.bursts.push_back(input.ConsumeRandomLengthString());

  quorvel::InputDeviceComPortFactory factory;
  factory.port = 1;
  // The reader takes the suffix as text; only what is ASCII stays the same bytes.
  factory.suffix.clear();
  for (const char byte : suffix) factory.suffix += static_cast<wchar_t>(byte & 0x7F);
  std::vector<std::string> expected;
  for (const std::string& burst : fed.bursts) {
    addMessages(burst, quorvel::wstr2str(factory.suffix), expected);
  }

  std::vector<std::string> messages;
  quorvel::SerialReader reader(factory, [&](const std::wstring& base64) {
    messages.push_back(quorvel::base64_decode(quorvel::wstr2str(base64)));
  });
  require(reader.open());
  fed.reader = &reader;
  line = &fed;
  reader.run();
  line = nullptr;
  require(messages == expected);
  return 0;
}
