// Follows the Inter-Client Communication Conventions Manual (ICCCM), section 2.
#include "dialog/SelectionOwner.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "util/Text.h"

namespace quorvel {
namespace {

// Replies and events, which xcb allocates with malloc.
struct Freer {
  void operator()(void* data) const { std::free(data); }
};
template <typename T>
using XcbOwned = std::unique_ptr<T, Freer>;

enum AtomIndex { kClipboard, kTargets, kMultiple, kAtomPair, kTimestamp, kUtf8, kAnyText, kPlain };

constexpr std::array<std::string_view, kPlain + 1> kAtomNames = {
    "CLIPBOARD", "TARGETS",     "MULTIPLE", "ATOM_PAIR",
    "TIMESTAMP", "UTF8_STRING", "TEXT",     "text/plain;charset=utf-8"};

// Bytes of a request besides those of the property.
constexpr std::size_t kRequestHeader = sizeof(xcb_change_property_request_t);

// Limit for the conversions in one request; no real program asks for so many.
constexpr std::uint32_t kMostConversions = 64;

template <typename T>
std::string bytesOf(const std::vector<T>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// The target STRING, which old programs ask for, is Latin-1.
std::string latin1(const std::string& text) {
  std::string result;
  for (const wchar_t character : str2wstr(text)) {
    result += character <= 0xFF ? static_cast<char>(character) : '?';
  }
  return result;
}

// Server times wrap round every 49 days.
bool isBefore(xcb_timestamp_t time, xcb_timestamp_t other) {
  return static_cast<std::int32_t>(time - other) < 0;
}

}  // namespace

SelectionOwner::SelectionOwner(const std::string& text)
    : text_(text), connection_(xcb_connect(nullptr, nullptr)) {}

bool SelectionOwner::take() {
  // Requests on a failed connection are harmless, but it has no setup data and so no screens.
  if (xcb_connection_has_error(connection_.get()) || !fits() || !internAtoms()) return false;
  createWindow();
  since_ = serverTime();
  if (since_ == XCB_CURRENT_TIME) return false;
  prepareAnswers();
  xcb_connection_t* const connection = connection_.get();
  xcb_set_selection_owner(connection, window_, atoms_[kClipboard], since_);
  const XcbOwned<xcb_get_selection_owner_reply_t> now(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, atoms_[kClipboard]), nullptr));
  return now && now->owner == window_;
}

// The text must fit into one property: incremental transfers are not supported.
bool SelectionOwner::fits() const {
  const std::size_t most = std::size_t{xcb_get_maximum_request_length(connection_.get())} * 4;
  return text_.size() + kRequestHeader <= most;
}

bool SelectionOwner::internAtoms() {
  std::vector<xcb_intern_atom_cookie_t> asked;
  for (const std::string_view name : kAtomNames) {
    asked.push_back(xcb_intern_atom(connection_.get(), false,
                                    static_cast<std::uint16_t>(name.size()), name.data()));
  }
  for (const xcb_intern_atom_cookie_t cookie : asked) {
    const XcbOwned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection_.get(), cookie, nullptr));
    atoms_.push_back(reply ? reply->atom : xcb_atom_t{XCB_NONE});
  }
  return std::ranges::find(atoms_, xcb_atom_t{XCB_NONE}) == atoms_.end();
}

void SelectionOwner::createWindow() {
  const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  window_ = xcb_generate_id(connection_.get());
  xcb_create_window(connection_.get(), 0, window_, screen.root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
}

// The server's time, taken from a property change; XCB_CURRENT_TIME when the server has gone away.
// Taking the selection at XCB_CURRENT_TIME instead would race with other programs.
xcb_timestamp_t SelectionOwner::serverTime() {
  xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, window_, XCB_ATOM_WM_NAME,
                      XCB_ATOM_STRING, 8, 0, nullptr);
  xcb_flush(connection_.get());
  while (const XcbOwned<xcb_generic_event_t> event{xcb_wait_for_event(connection_.get())}) {
    if (event->response_type != XCB_PROPERTY_NOTIFY) continue;
    return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
  }
  return XCB_CURRENT_TIME;
}

void SelectionOwner::prepareAnswers() {
  const xcb_atom_t utf8 = atoms_[kUtf8];
  answers_ = {{utf8, utf8, 8, text_},
              {atoms_[kAnyText], utf8, 8, text_},
              {atoms_[kPlain], atoms_[kPlain], 8, text_},
              {XCB_ATOM_STRING, XCB_ATOM_STRING, 8, latin1(text_)},
              {atoms_[kTimestamp], XCB_ATOM_INTEGER, 32, bytesOf(std::vector{since_})}};
  std::vector<xcb_atom_t> targets = {atoms_[kTargets], atoms_[kMultiple]};
  for (const Answer& answer : answers_) targets.push_back(answer.target);
  answers_.push_back({atoms_[kTargets], XCB_ATOM_ATOM, 32, bytesOf(targets)});
}

// XCB keeps every event that it reads, and reads whenever it writes. A program that asks faster
// than it can be answered would fill the host's memory.
void SelectionOwner::serve() {
  using Event = XcbOwned<xcb_generic_event_t>;
  xcb_connection_t* const connection = connection_.get();
  while (!cleared_ || !requests_.empty()) {
    if (requests_.empty()) {
      xcb_flush(connection);
      const Event event(xcb_wait_for_event(connection));
      if (!event) return;
      keep(*event);
    }
    while (const Event event{xcb_poll_for_queued_event(connection)}) keep(*event);
    if (requests_.empty()) continue;
    const xcb_selection_request_event_t request = requests_.front();
    requests_.pop_front();
    answer(request);
  }
  xcb_flush(connection);
}

// All other events, among them errors caused by requestors that have vanished, say nothing. Of one
// requestor no more than a few requests are kept, so that others are answered beside a flood.
void SelectionOwner::keep(const xcb_generic_event_t& event) {
  constexpr std::size_t kMost = 1000;
  constexpr std::ptrdiff_t kMostOfOne = 50;
  if (event.response_type == XCB_SELECTION_CLEAR) cleared_ = true;
  if (event.response_type != XCB_SELECTION_REQUEST || requests_.size() >= kMost) return;
  const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(event);
  const auto waiting =
      std::ranges::count(requests_, request.requestor, &xcb_selection_request_event_t::requestor);
  if (waiting < kMostOfOne) requests_.push_back(request);
}

void SelectionOwner::answer(const xcb_selection_request_event_t& request) {
  // Obsolete clients name no property; the target serves as its name.
  const xcb_atom_t property = request.property == XCB_NONE ? request.target : request.property;
  const bool converted = convert(request, property);
  xcb_selection_notify_event_t notice = {};
  notice.response_type = XCB_SELECTION_NOTIFY;
  notice.time = request.time;
  notice.requestor = request.requestor;
  notice.selection = request.selection;
  notice.target = request.target;
  notice.property = converted ? property : xcb_atom_t{XCB_NONE};
  // Every event on the wire has 32 bytes, which is more than the struct.
  char event[32] = {};
  static_assert(sizeof notice <= sizeof event);
  std::memcpy(event, &notice, sizeof notice);
  xcb_send_event(connection_.get(), false, request.requestor, XCB_EVENT_MASK_NO_EVENT, event);
}

bool SelectionOwner::convert(const xcb_selection_request_event_t& request, xcb_atom_t property) {
  if (request.selection != atoms_[kClipboard]) return false;
  if (request.time != XCB_CURRENT_TIME && isBefore(request.time, since_)) return false;
  if (request.target != atoms_[kMultiple]) {
    return convertOne(request.requestor, request.target, property);
  }
  return request.property != XCB_NONE && convertMultiple(request.requestor, property);
}

bool SelectionOwner::convertOne(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
  const auto answer = std::ranges::find(answers_, target, &Answer::target);
  if (answer == answers_.end()) return false;
  const auto items = static_cast<std::uint32_t>(answer->bytes.size() * 8 / answer->format);
  xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, answer->type,
                      answer->format, items, answer->bytes.data());
  return true;
}

// The property lists pairs of target and property. In pairs that cannot be served the property is
// replaced by XCB_NONE, which tells the requestor.
bool SelectionOwner::convertMultiple(xcb_window_t requestor, xcb_atom_t property) {
  xcb_connection_t* const connection = connection_.get();
  const XcbOwned<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(connection,
                             xcb_get_property(connection, false, requestor, property,
                                              atoms_[kAtomPair], 0, 2 * kMostConversions),
                             nullptr));
  if (!reply || reply->type != atoms_[kAtomPair] || reply->format != 32) return false;
  const auto* const listed = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
  std::vector<xcb_atom_t> pairs(listed, listed + reply->value_len);
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
    if (!convertOne(requestor, pairs[i], pairs[i + 1])) pairs[i + 1] = XCB_NONE;
  }
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, requestor, property, atoms_[kAtomPair], 32,
                      static_cast<std::uint32_t>(pairs.size()), pairs.data());
  return true;
}

}  // namespace quorvel
