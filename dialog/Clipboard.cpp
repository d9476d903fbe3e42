#include "dialog/Clipboard.h"

#include <pthread.h>

#include <future>
#include <memory>

#include "dialog/SelectionOwner.h"
#include "util/PosixThread.h"

namespace quorvel {
namespace {

struct Offer {
  std::string text;
  std::promise<bool> taken;
};

// The thread of one text. It makes the connection as well as answering on it: every signal is
// blocked here, so that a server that goes away cannot end the host by SIGPIPE.
void* offerText(void* argument) {
  pthread_detach(pthread_self());
  const std::unique_ptr<Offer> offer(static_cast<Offer*>(argument));
  try {
    SelectionOwner owner(offer->text);
    const bool taken = owner.take();
    offer->taken.set_value(taken);
    if (taken) owner.serve();
  } catch (...) {
    // Without memory the text is withdrawn; a caller that still waits learns of the broken promise.
  }
  return nullptr;
}

}  // namespace
}  // namespace quorvel

// Each text has an owner of its own: taking the selection away from the one before is what ends it,
// in this process as in any other.
bool clip::set_text(const std::string& text) {
  try {
    auto offer = std::make_unique<quorvel::Offer>(quorvel::Offer{text, {}});
    std::future<bool> taken = offer->taken.get_future();
    quorvel::PosixThread thread;
    if (!thread.start(quorvel::offerText, offer.get())) return false;
    static_cast<void>(offer.release());  // the thread's now
    return taken.get();
  } catch (...) {
    return false;
  }
}
