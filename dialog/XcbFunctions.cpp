#include "dialog/XcbFunctions.h"

namespace quorvel {

QUORVEL_XCB_FUNCTIONS(QUORVEL_DEFINE_LATE)

bool openXcb() {
  static const bool isOpen = [] {
    void* const library = openForGood("libxcb.so.1");
    return library QUORVEL_XCB_FUNCTIONS(QUORVEL_RESOLVE_LATE);
  }();
  return isOpen;
}

}  // namespace quorvel
