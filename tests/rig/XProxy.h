// An X server that dies at a chosen request.
#pragma once

#include <atomic>
#include <list>
#include <string>
#include <thread>

#include "util/Handles.h"

namespace rig {

// Forwards everything between its clients and a real X server until it dies: then it closes all
// connections and accepts no more, like a crashed server. The real server keeps running.
//
// To test an operation against a server that dies at any of its requests, count the requests first
// and then die at each:
//
//   unsigned requests = 0;
//   {
//     XProxy proxy(server.display());
//     const rig::ScopedVariable display("DISPLAY", proxy.display());
//     operation();
//     requests = proxy.requests();
//   }
//   for (unsigned n = 1; n <= requests; ++n) {
//     XProxy proxy(server.display(), n);
//     ...
//   }
//
// GTK does not survive a lost connection, so tests of GTK code need a child process for each try.
//
// In a process in which a server has died no leaks are looked for: the driver gives lost
// connections up as they are, and what Xlib and GTK hold of them stays allocated.
class XProxy {
 public:
  static constexpr unsigned kNever = 0;

  // Serves clients on a thread of its own. Dies instead of forwarding request number `lastRequest`,
  // counted from 1 over all connections; setting up a connection counts as a request.
  explicit XProxy(const std::string& realDisplay, unsigned lastRequest = kNever);
  ~XProxy();
  XProxy(const XProxy&) = delete;
  XProxy& operator=(const XProxy&) = delete;

  // The value for DISPLAY, different for each proxy.
  std::string display() const { return ":" + std::to_string(number_); }

  // How many requests clients have made so far.
  unsigned requests() const { return requests_; }

  // Dies at the `request`th request from now on.
  void dieAtRequestFromNow(unsigned request) { lastRequest_ = requests_ + request; }

  // Whether it has died. Already true when a client can notice.
  bool isDead() const { return dead_; }

  // Dies now. Returns when every connection is closed.
  void die();

 private:
  struct Link {
    quorvel::FileDescriptor client;
    quorvel::FileDescriptor server;
    std::string unsent;  // the beginning of the client's next request
    bool isSetUp = false;
    bool isOpen = true;
  };

  void serve();
  void accept();
  void passRequests(Link& link);
  void passAnswers(Link& link) const;
  bool isLastRequest() { return ++requests_ == lastRequest_; }

  const std::string realDisplay_;
  int number_ = 0;
  std::atomic<unsigned> lastRequest_;
  std::atomic<unsigned> requests_ = 0;
  std::atomic<bool> dead_ = false;  // before the first connection is closed
  quorvel::FileDescriptor listener_;
  quorvel::FileDescriptor end_;  // readable when the proxy must die
  bool alive_ = true;            // used only by the thread
  std::list<Link> links_;        // the same
  std::thread thread_;
};

}  // namespace rig
