// The owner of the X clipboard.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "dialog/XcbFunctions.h"

namespace quorvel {

struct XcbDisconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

// Offers one text to other programs on its own X connection. Used on one thread.
class SelectionOwner {
 public:
  // Connects to the default display. `text` is UTF-8.
  explicit SelectionOwner(const std::string& text);

  // Takes ownership of the clipboard. False when there is no X server or it refuses.
  bool take();

  // Serves requestors until another program takes the clipboard or the X server goes away.
  void serve();

 private:
  // The answer to one target.
  struct Answer {
    xcb_atom_t target;
    xcb_atom_t type;  // of the property
    std::uint8_t format;
    std::string bytes;
  };

  bool internAtoms();
  void createWindow();
  xcb_timestamp_t serverTime();
  bool fits() const;
  void prepareAnswers();
  void keep(const xcb_generic_event_t& event);
  void answer(const xcb_selection_request_event_t& request);
  bool convert(const xcb_selection_request_event_t& request, xcb_atom_t property);
  bool convertOne(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
  bool convertMultiple(xcb_window_t requestor, xcb_atom_t property);

  const std::string text_;
  std::unique_ptr<xcb_connection_t, XcbDisconnect> connection_;
  std::vector<xcb_atom_t> atoms_;  // by AtomIndex
  xcb_window_t window_ = XCB_NONE;
  xcb_timestamp_t since_ = XCB_CURRENT_TIME;  // when ownership began
  std::vector<Answer> answers_;
  std::deque<xcb_selection_request_event_t> requests_;  // not answered yet
  bool cleared_ = false;                                // another program has taken the clipboard
};

}  // namespace quorvel
