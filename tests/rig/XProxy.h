// An X server that dies at a request of the test's choice.
#pragma once

#include <atomic>
#include <list>
#include <string>
#include <thread>

#include "util/Handles.h"

namespace rig {

// Passes everything on between its clients and a real X server, until it dies: then it closes every
// connection and lets no further client in, as a server that crashes does. The real server lives
// on.
//
// To try what happens when the server dies at any of the requests that an operation makes, count
// them once and then die at each:
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
// A process cannot forget a connection that GTK has lost, so there each try takes a child process.
//
// In a process in which a server has died no leaks are looked for: the driver gives lost
// connections up as they are, and what Xlib and GTK hold of them stays allocated.
class XProxy {
 public:
  static constexpr unsigned kNever = 0;

  // Serves clients in a thread of its own. Dies in place of passing on the client request of the
  // number `lastRequest`, counted from 1 over all connections; the setup of a connection counts.
  explicit XProxy(const std::string& realDisplay, unsigned lastRequest = kNever);
  ~XProxy();
  XProxy(const XProxy&) = delete;
  XProxy& operator=(const XProxy&) = delete;

  // What to put into DISPLAY. A name of its own for every proxy.
  std::string display() const { return ":" + std::to_string(number_); }

  // How many requests clients have made so far.
  unsigned requests() const { return requests_; }

  // Dies at the request that comes as the `request`th from now.
  void dieAtRequestFromNow(unsigned request) { lastRequest_ = requests_ + request; }

  // Whether it has died. True before any client can notice.
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
  quorvel::FileDescriptor end_;  // readable when the proxy is to die
  bool alive_ = true;            // used by the thread alone
  std::list<Link> links_;        // the same
  std::thread thread_;
};

}  // namespace rig
