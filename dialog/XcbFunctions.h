// The XCB library, opened when a text is put on the clipboard. Every source that calls it includes
// this.
#pragma once

#include <xcb/xcb.h>

#include "dialog/LateFunctions.h"

#define QUORVEL_XCB_FUNCTIONS(X)    \
  X(xcb_change_property)            \
  X(xcb_connect)                    \
  X(xcb_connection_has_error)       \
  X(xcb_create_window)              \
  X(xcb_disconnect)                 \
  X(xcb_flush)                      \
  X(xcb_generate_id)                \
  X(xcb_get_maximum_request_length) \
  X(xcb_get_property)               \
  X(xcb_get_property_reply)         \
  X(xcb_get_property_value)         \
  X(xcb_get_selection_owner)        \
  X(xcb_get_selection_owner_reply)  \
  X(xcb_get_setup)                  \
  X(xcb_intern_atom)                \
  X(xcb_intern_atom_reply)          \
  X(xcb_poll_for_queued_event)      \
  X(xcb_send_event)                 \
  X(xcb_set_selection_owner)        \
  X(xcb_setup_roots_iterator)       \
  X(xcb_wait_for_event)

namespace quorvel {

// Null until openXcb has succeeded, and then never changed.
QUORVEL_XCB_FUNCTIONS(QUORVEL_DECLARE_LATE)

// False when the library is not installed. Any thread.
bool openXcb();

}  // namespace quorvel
