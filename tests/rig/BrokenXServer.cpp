#include "tests/rig/BrokenXServer.h"

#include <X11/X.h>
#include <X11/Xproto.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <stdexcept>

namespace rig {
namespace {

// Far above the numbers of real displays.
constexpr int kFirstNumber = 20000;

// What the protocol puts after the prefix: one screen with one depth and one visual.
struct Setup {
  xConnSetup fixed;
  xPixmapFormat format;
  xWindowRoot root;
  xDepth depth;
  xVisualType visual;
};

struct Answer {
  xConnSetupPrefix prefix;
  Setup setup;
};

Answer answer() {
  Answer result = {};
  result.prefix = {.success = xTrue,
                   .lengthReason = 0,
                   .majorVersion = X_PROTOCOL,
                   .minorVersion = X_PROTOCOL_REVISION,
                   .length = sizeof(Setup) / 4};
  xConnSetup& fixed = result.setup.fixed;
  fixed.ridBase = 0x200000;
  fixed.ridMask = 0x1FFFFF;
  fixed.maxRequestSize = 0xFFFF;
  fixed.numRoots = 1;
  fixed.numFormats = 1;
  fixed.minKeyCode = 8;
  fixed.maxKeyCode = 255;
  result.setup.format = {.depth = 24, .bitsPerPixel = 32, .scanLinePad = 32, .pad1 = 0, .pad2 = 0};
  result.setup.root.windowId = 1;
  result.setup.root.rootVisualID = 2;
  result.setup.root.rootDepth = 24;
  result.setup.root.nDepths = 1;
  result.setup.depth.depth = 24;
  result.setup.depth.nVisuals = 1;
  result.setup.visual.visualID = 2;
  result.setup.visual.c_class = TrueColor;
  return result;
}

// Listens where clients look for the display of this number first: a name that is no file.
bool bindTo(int listener, int number) {
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  const std::string name = "/tmp/.X11-unix/X" + std::to_string(number);
  name.copy(address.sun_path + 1, name.size());
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
  return bind(listener, reinterpret_cast<const sockaddr*>(&address), length) == 0 &&
         listen(listener, 1) == 0;
}

}  // namespace

BrokenXServer::BrokenXServer()
    : number_(kFirstNumber), listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  while (!bindTo(listener_, number_)) {
    if (++number_ == kFirstNumber + 1000) throw std::runtime_error("no free display number");
  }
  thread_ = std::thread([this] { serve(); });
}

BrokenXServer::~BrokenXServer() {
  // Ends the wait for a client that never came.
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

void BrokenXServer::serve() const {
  const int client = accept(listener_, nullptr, nullptr);
  if (client < 0) return;
  std::array<char, 4096> request;
  const Answer setup = answer();
  if (read(client, request.data(), request.size()) > 0) {
    [[maybe_unused]] const ssize_t sent = write(client, &setup, sizeof(setup));
  }
  close(client);
}

}  // namespace rig
