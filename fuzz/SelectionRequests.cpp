// The clipboard's owner, asked for anything by anybody. Stands in for the X server.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dialog/SelectionOwner.h"
#include "dialog/XcbFunctions.h"
#include "fuzz/Require.h"

namespace {

constexpr xcb_timestamp_t kSince = 1000;
constexpr xcb_atom_t kFirstAtom = 100;

using Pairs = std::vector<xcb_atom_t>;

struct Written {
  xcb_window_t window;
  xcb_atom_t property;
  xcb_atom_t type;
  std::string bytes;
};

// What the server knows and is told in one run.
struct Server {
  FuzzedDataProvider* input = nullptr;
  xcb_window_t owner = 0;
  bool askedForTime = false;
  std::vector<std::string> atoms;
  std::vector<xcb_selection_request_event_t> asked;
  std::vector<xcb_selection_notify_event_t> answers;
  std::vector<Written> written;  // since the last answer
  std::vector<Pairs> listed;     // that MULTIPLE requests have read, since the last answer
};
Server* server = nullptr;

template <typename T>
T* allocated(std::size_t more = 0) {
  return static_cast<T*>(std::calloc(1, sizeof(T) + more));
}

xcb_atom_t atom(std::string_view name) {
  for (std::size_t i = 0; i < server->atoms.size(); ++i) {
    if (server->atoms[i] == name) return kFirstAtom + static_cast<xcb_atom_t>(i);
  }
  return XCB_NONE;
}

xcb_atom_t anyAtom() {
  if (server->input->ConsumeBool()) return server->input->ConsumeIntegralInRange(0u, 120u);
  return server->input->ConsumeIntegral<std::uint32_t>();
}

xcb_generic_event_t* anyRequest() {
  auto* const request = allocated<xcb_selection_request_event_t>();
  request->response_type = XCB_SELECTION_REQUEST;
  request->requestor = server->input->ConsumeIntegralInRange(1u, 3u);
  const bool foreign = server->input->ConsumeBool() && server->input->ConsumeBool();
  request->selection = foreign ? anyAtom() : atom("CLIPBOARD");
  request->target = server->input->ConsumeBool() ? atom("MULTIPLE") : anyAtom();
  request->property = anyAtom();
  request->time =
      server->input->ConsumeBool() ? 0 : server->input->ConsumeIntegral<std::uint32_t>();
  server->asked.push_back(*request);
  return reinterpret_cast<xcb_generic_event_t*>(request);
}

// Fewer than would count as a flood, so that each is answered.
constexpr std::size_t kMostRequests = 40;

xcb_generic_event_t* nextEvent() {
  if (!server->askedForTime) {
    server->askedForTime = true;
    auto* const notice = allocated<xcb_property_notify_event_t>();
    notice->response_type = XCB_PROPERTY_NOTIFY;
    notice->time = kSince;
    return reinterpret_cast<xcb_generic_event_t*>(notice);
  }
  if (server->input->remaining_bytes() == 0 || server->asked.size() == kMostRequests)
    return nullptr;
  if (server->input->ConsumeIntegral<std::uint8_t>() > 0) return anyRequest();
  auto* const event = allocated<xcb_selection_request_event_t>();
  event->response_type = server->input->ConsumeIntegral<std::uint8_t>();
  if (event->response_type == XCB_SELECTION_REQUEST) event->response_type = 0;
  return reinterpret_cast<xcb_generic_event_t*>(event);
}

xcb_get_property_reply_t* anyList() {
  FuzzedDataProvider& input = *server->input;
  if (input.ConsumeIntegral<std::uint8_t>() == 0) return nullptr;
  Pairs pairs;
  for (int left = input.ConsumeIntegralInRange(0, 9); left > 0; --left) pairs.push_back(anyAtom());
  const std::size_t bytes = pairs.size() * sizeof(xcb_atom_t);
  auto* const reply = allocated<xcb_get_property_reply_t>(bytes);
  reply->type = input.ConsumeBool() ? atom("ATOM_PAIR") : anyAtom();
  reply->format = input.ConsumeBool() ? 32 : input.PickValueInArray<std::uint8_t>({0, 8, 16});
  reply->value_len = reply->format == 0 ? 0 : static_cast<std::uint32_t>(bytes * 8 / reply->format);
  if (bytes > 0) std::memcpy(reply + 1, pairs.data(), bytes);
  if (reply->type == atom("ATOM_PAIR") && reply->format == 32) server->listed.push_back(pairs);
  return reply;
}

bool isText(xcb_atom_t target) {
  return target == XCB_ATOM_STRING || target == atom("UTF8_STRING") || target == atom("TEXT") ||
         target == atom("text/plain;charset=utf-8");
}

bool isKnown(xcb_atom_t target) {
  return isText(target) || target == atom("TARGETS") || target == atom("TIMESTAMP");
}

// Each answer is checked when it is sent, with what has been written for it.
void takeAnswer(const xcb_selection_notify_event_t& notice, const std::string& text) {
  require(server->answers.size() < server->asked.size());
  const xcb_selection_request_event_t& request = server->asked[server->answers.size()];
  server->answers.push_back(notice);
  require(notice.requestor == request.requestor && notice.selection == request.selection);
  require(notice.target == request.target && notice.time == request.time);
  const xcb_atom_t property = request.property == XCB_NONE ? request.target : request.property;
  const bool early =
      request.time != XCB_CURRENT_TIME && static_cast<std::int32_t>(request.time - kSince) < 0;
  const bool served = request.selection == atom("CLIPBOARD") && !early;
  Pairs pairs;
  bool expected = served && isKnown(request.target);
  if (request.target == atom("MULTIPLE")) {
    expected = served && !server->listed.empty();
    if (expected) pairs = server->listed.front();
  } else if (expected) {
    pairs = {request.target, property};
  }
  require(notice.property == (expected ? property : xcb_atom_t{XCB_NONE}));

  std::size_t next = 0;
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
    if (!isKnown(pairs[i])) {
      pairs[i + 1] = XCB_NONE;
      continue;
    }
    const Written& written = server->written.at(next++);
    require(written.window == request.requestor && written.property == pairs[i + 1]);
    if (isText(pairs[i]) && pairs[i] != XCB_ATOM_STRING) require(written.bytes == text);
  }
  if (expected && request.target == atom("MULTIPLE")) {
    const Written& written = server->written.at(next++);
    require(written.property == property && written.type == atom("ATOM_PAIR"));
    const auto* const start = reinterpret_cast<const char*>(pairs.data());
    require(written.bytes == std::string(start, pairs.size() * sizeof(xcb_atom_t)));
  }
  require(next == server->written.size());
  server->written.clear();
  server->listed.clear();
}

const std::string* offered = nullptr;

void replaceXcb() {
  quorvel::xcb_connect = [](const char*, int*) { return reinterpret_cast<xcb_connection_t*>(1); };
  quorvel::xcb_disconnect = [](xcb_connection_t*) {};
  quorvel::xcb_connection_has_error = [](xcb_connection_t*) { return 0; };
  quorvel::xcb_flush = [](xcb_connection_t*) { return 1; };
  quorvel::xcb_get_maximum_request_length = [](xcb_connection_t*) { return std::uint32_t{65535}; };
  quorvel::xcb_generate_id = [](xcb_connection_t*) { return std::uint32_t{7}; };
  quorvel::xcb_get_setup = [](xcb_connection_t*) -> const xcb_setup_t* { return nullptr; };
  quorvel::xcb_setup_roots_iterator = [](const xcb_setup_t*) {
    static xcb_screen_t screen;
    return xcb_screen_iterator_t{&screen, 1, 0};
  };
  quorvel::xcb_create_window = [](xcb_connection_t*, auto...) { return xcb_void_cookie_t{}; };
  quorvel::xcb_intern_atom = [](xcb_connection_t*, std::uint8_t, std::uint16_t size,
                                const char* name) {
    server->atoms.emplace_back(name, size);
    return xcb_intern_atom_cookie_t{static_cast<unsigned>(server->atoms.size() - 1)};
  };
  quorvel::xcb_intern_atom_reply = [](xcb_connection_t*, xcb_intern_atom_cookie_t cookie,
                                      xcb_generic_error_t**) {
    auto* const reply = allocated<xcb_intern_atom_reply_t>();
    reply->atom = kFirstAtom + cookie.sequence;
    return reply;
  };
  quorvel::xcb_set_selection_owner = [](xcb_connection_t*, xcb_window_t window, xcb_atom_t,
                                        xcb_timestamp_t time) {
    require(time == kSince);
    server->owner = window;
    return xcb_void_cookie_t{};
  };
  quorvel::xcb_get_selection_owner = [](xcb_connection_t*, xcb_atom_t) {
    return xcb_get_selection_owner_cookie_t{};
  };
  quorvel::xcb_get_selection_owner_reply = [](xcb_connection_t*, xcb_get_selection_owner_cookie_t,
                                              xcb_generic_error_t**) {
    auto* const reply = allocated<xcb_get_selection_owner_reply_t>();
    reply->owner = server->owner;
    return reply;
  };
  quorvel::xcb_wait_for_event = [](xcb_connection_t*) { return nextEvent(); };
  quorvel::xcb_poll_for_queued_event = [](xcb_connection_t*) {
    const bool more = server->input->remaining_bytes() > 0 && server->input->ConsumeBool();
    return more ? nextEvent() : nullptr;
  };
  quorvel::xcb_get_property = [](xcb_connection_t*, auto...) {
    return xcb_get_property_cookie_t{};
  };
  quorvel::xcb_get_property_reply = [](xcb_connection_t*, xcb_get_property_cookie_t,
                                       xcb_generic_error_t**) { return anyList(); };
  quorvel::xcb_get_property_value = [](const xcb_get_property_reply_t* reply) -> void* {
    return const_cast<xcb_get_property_reply_t*>(reply) + 1;
  };
  quorvel::xcb_change_property = [](xcb_connection_t*, std::uint8_t, xcb_window_t window,
                                    xcb_atom_t property, xcb_atom_t type, std::uint8_t format,
                                    std::uint32_t items, const void* data) {
    const std::size_t bytes = std::size_t{items} * format / 8;
    const auto* const start = static_cast<const char*>(data);
    if (server->askedForTime) {
      server->written.push_back({window, property, type, std::string(start, start + bytes)});
    }
    return xcb_void_cookie_t{};
  };
  quorvel::xcb_send_event = [](xcb_connection_t*, std::uint8_t, xcb_window_t window, std::uint32_t,
                               const char* event) {
    xcb_selection_notify_event_t notice;
    std::memcpy(&notice, event, sizeof notice);
    require(notice.response_type == XCB_SELECTION_NOTIFY && notice.requestor == window);
    takeAnswer(notice, *offered);
    return xcb_void_cookie_t{};
  };
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool replaced = (replaceXcb(), true);
  require(replaced);
  FuzzedDataProvider input(data, size);
  const std::string text = input.ConsumeRandomLengthString(100);
  Server own;
  own.input = &input;
  server = &own;
  offered = &text;
  quorvel::SelectionOwner owner(text);
  require(owner.take());
  owner.serve();
  require(own.answers.size() == own.asked.size());
  return 0;
}
