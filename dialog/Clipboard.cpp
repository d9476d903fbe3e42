#include "dialog/Clipboard.h"

#include <pthread.h>

#include <future>
#include <memory>

#include "dialog/SelectionOwner.h"
#include "dialog/XcbFunctions.h"
#include "util/PosixThread.h"

namespace quorvel {
namespace {

struct Offer {
  std::string text;
  std::promise<bool> taken;
};

// The thread that serves one text. It also makes the connection, because it blocks every signal: a
// vanishing server must not kill the host by SIGPIPE.
void* offerText(void* argument) {
  pthread_detach(pthread_self());
  const std::unique_ptr<Offer> offer(static_cast<Offer*>(argument));
  try {
    SelectionOwner owner(offer->text);
    const bool taken = owner.take();
    offer->taken.set_value(taken);
    if (taken) owner.serve();
  } catch (...) {
    // Out of memory. The text is withdrawn; a caller still waiting gets a broken promise.
  }
  return nullptr;
}

}  // namespace
}  // namespace quorvel

// Each text has its own owner, which ends when the next owner, in any process, takes the selection.
bool clip::set_text(const std::string& text) {
  try {
    if (!quorvel::openXcb()) return false;
    auto offer = std::make_unique<quorvel::Offer>(quorvel::Offer{text, {}});
    std::future<bool> taken = offer->taken.get_future();
    quorvel::PosixThread thread;
    if (!thread.start(quorvel::offerText, offer.get())) return false;
    static_cast<void>(offer.release());  // the thread owns it now
    return taken.get();
  } catch (...) {
    return false;
  }
}
