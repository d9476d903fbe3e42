#include "dialog/GtkFunctions.h"

namespace quorvel {

QUORVEL_GTK_FUNCTIONS(QUORVEL_DEFINE_LATE)

bool openGtk() {
  static bool isOpen = false;
  if (isOpen) return true;
  void* const library = openForGood(kGtkLibrary);
  isOpen = library QUORVEL_GTK_FUNCTIONS(QUORVEL_RESOLVE_LATE);
  return isOpen;
}

}  // namespace quorvel
