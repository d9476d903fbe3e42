#include "tests/rig/XProxy.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// Whether a server has died in this process.
std::atomic<bool> anyHasDied = false;

}  // namespace

extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() { return anyHasDied; }

namespace rig {
namespace {

using quorvel::FileDescriptor;

// Far above the display numbers in real use.
constexpr int kFirstNumber = 20000;

// Calls bind() or connect() with the address at which clients look for a display first: an abstract
// socket.
template <typename Function>
bool atDisplay(Function function, int socket, const std::string& number) {
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  const std::string name = "/tmp/.X11-unix/X" + number;
  name.copy(address.sun_path + 1, name.size());
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
  return function(socket, reinterpret_cast<const sockaddr*>(&address), length) == 0;
}

FileDescriptor newSocket() {
  return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

std::uint16_t cardinalAt(const std::string& bytes, std::size_t offset) {
  std::uint16_t value = 0;
  std::memcpy(&value, bytes.data() + offset, sizeof(value));
  return value;
}

std::size_t padded(std::size_t size) { return (size + 3) / 4 * 4; }

// The size of the connection setup at the start of `bytes`; nothing until enough of it has come.
std::optional<std::size_t> sizeOfSetup(const std::string& bytes) {
  constexpr std::size_t kHeader = 12;
  if (bytes.size() < kHeader) return {};
  return kHeader + padded(cardinalAt(bytes, 6)) + padded(cardinalAt(bytes, 8));
}

// The same for a request. A length of 0 means that a 32-bit length follows.
std::optional<std::size_t> sizeOfRequest(const std::string& bytes) {
  if (bytes.size() < 4) return {};
  std::uint32_t words = cardinalAt(bytes, 2);
  if (words == 0) {
    if (bytes.size() < 8) return {};
    std::memcpy(&words, bytes.data() + 4, sizeof(words));
  }
  return std::size_t{words} * 4;
}

// False when the peer is gone.
bool sendAll(const FileDescriptor& to, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(to.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

// Empty at the end of the connection.
std::string receive(const FileDescriptor& from) {
  std::array<char, 65536> bytes;
  const ssize_t count = recv(from.get(), bytes.data(), bytes.size(), 0);
  return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

}  // namespace

XProxy::XProxy(const std::string& realDisplay, unsigned lastRequest)
    : realDisplay_(realDisplay.substr(realDisplay.find(':') + 1)),
      lastRequest_(lastRequest),
      listener_(newSocket()),
      end_(eventfd(0, EFD_CLOEXEC)) {
  for (number_ = kFirstNumber; !atDisplay(bind, listener_.get(), std::to_string(number_));
       ++number_) {
    if (number_ == kFirstNumber + 1000) throw std::runtime_error("no free display number");
  }
  if (listen(listener_.get(), SOMAXCONN) != 0) throw std::runtime_error("cannot listen");
  thread_ = std::thread([this] { serve(); });
}

XProxy::~XProxy() { die(); }

void XProxy::die() {
  if (!thread_.joinable()) return;
  eventfd_write(end_.get(), 1);
  thread_.join();
}

void XProxy::serve() {
  while (alive_) {
    std::vector<pollfd> waits = {{.fd = end_.get(), .events = POLLIN, .revents = 0},
                                 {.fd = listener_.get(), .events = POLLIN, .revents = 0}};
    for (const Link& link : links_) {
      waits.push_back({.fd = link.client.get(), .events = POLLIN, .revents = 0});
      waits.push_back({.fd = link.server.get(), .events = POLLIN, .revents = 0});
    }
    poll(waits.data(), waits.size(), -1);
    alive_ = waits[0].revents == 0;
    auto wait = waits.begin() + 2;
    for (Link& link : links_) {
      if (alive_ && (wait++)->revents != 0) passRequests(link);
      if (alive_ && (wait++)->revents != 0) passAnswers(link);
    }
    links_.remove_if([](const Link& link) { return !link.isOpen; });
    if (alive_ && waits[1].revents != 0) accept();
  }
  anyHasDied = true;
  dead_ = true;
  listener_.reset();
  links_.clear();
}

void XProxy::accept() {
  Link link{.client = FileDescriptor(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC)),
            .server = newSocket(),
            .unsent = {}};
  if (atDisplay(connect, link.server.get(), realDisplay_)) links_.push_back(std::move(link));
}

void XProxy::passRequests(Link& link) {
  const std::string received = receive(link.client);
  link.isOpen = !received.empty();
  link.unsent += received;
  while (link.isOpen && alive_) {
    const auto size = link.isSetUp ? sizeOfRequest(link.unsent) : sizeOfSetup(link.unsent);
    if (!size || link.unsent.size() < *size) return;
    if (isLastRequest()) {
      alive_ = false;
    } else {
      link.isOpen = sendAll(link.server, std::string_view(link.unsent).substr(0, *size));
    }
    link.isSetUp = true;
    link.unsent.erase(0, *size);
  }
}

void XProxy::passAnswers(Link& link) const {
  const std::string received = receive(link.server);
  link.isOpen = !received.empty() && sendAll(link.client, received);
}

}  // namespace rig
