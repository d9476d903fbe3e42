// The clipboard as other X clients see it, down to the protocol.
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialog/Clipboard.h"
#include "dialog/SelectionOwner.h"
#include "tests/rig/Driver.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/Threads.h"

namespace {

struct Free {
  void operator()(void* data) const { std::free(data); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

struct Property {
  xcb_atom_t type;
  int format;
  std::string bytes;
};

// Another program that asks for the clipboard.
class Requestor {
 public:
  Requestor() : connection_(xcb_connect(nullptr, nullptr)) {
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    window_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, 0, window_, screen.root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
  }
  ~Requestor() { xcb_disconnect(connection_); }
  Requestor(const Requestor&) = delete;
  Requestor& operator=(const Requestor&) = delete;

  xcb_atom_t atom(const std::string& name) const {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, false, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    return reply->atom;
  }

  // The clipboard as `target`; empty when its owner refuses.
  std::optional<Property> ask(const std::string& target, xcb_timestamp_t time = XCB_CURRENT_TIME) {
    return request(atom(target), atom("ANSWER"), time) ? read(atom("ANSWER")) : std::nullopt;
  }

  bool request(xcb_atom_t target, xcb_atom_t property, xcb_timestamp_t time = XCB_CURRENT_TIME) {
    send(target, property, 1, time);
    return awaitAnswer(target);
  }

  // Asks this many times. The server has all requests when it returns.
  void send(xcb_atom_t target, xcb_atom_t property, int count,
            xcb_timestamp_t time = XCB_CURRENT_TIME) {
    const xcb_atom_t clipboard = atom("CLIPBOARD");
    for (int i = 0; i < count; ++i) {
      xcb_convert_selection(connection_, window_, clipboard, target, property, time);
    }
    atom("CLIPBOARD");
  }

  bool awaitAnswer(xcb_atom_t target) {
    while (const Owned<xcb_generic_event_t> event{xcb_wait_for_event(connection_)}) {
      if ((event->response_type & 0x7F) != XCB_SELECTION_NOTIFY) continue;
      const auto& notice = *reinterpret_cast<xcb_selection_notify_event_t*>(event.get());
      EXPECT_EQ(notice.target, target);
      return notice.property != XCB_NONE;
    }
    return false;
  }

  // How many answers the server has for this program that were not awaited.
  int answersLeft() {
    atom("CLIPBOARD");
    int count = 0;
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
      if ((event->response_type & 0x7F) == XCB_SELECTION_NOTIFY) ++count;
    }
    return count;
  }

  // Takes the clipboard from its owner.
  void take() {
    xcb_set_selection_owner(connection_, window_, atom("CLIPBOARD"), XCB_CURRENT_TIME);
    atom("CLIPBOARD");
  }

  std::optional<Property> read(xcb_atom_t property) {
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, true, window_, property, 0, 0, 1 << 20),
        nullptr));
    if (!reply || reply->type == XCB_NONE) return std::nullopt;
    return Property{reply->type,
                    reply->format,
                    {static_cast<char*>(xcb_get_property_value(reply.get())),
                     static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))}};
  }

  void write(xcb_atom_t property, xcb_atom_t type, const std::vector<xcb_atom_t>& atoms) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, type, 32,
                        static_cast<std::uint32_t>(atoms.size()), atoms.data());
  }

  // Asks, and disappears before the answer comes.
  void askAndVanish() {
    xcb_convert_selection(connection_, window_, atom("CLIPBOARD"), atom("UTF8_STRING"),
                          atom("ANSWER"), XCB_CURRENT_TIME);
    xcb_destroy_window(connection_, window_);
    xcb_flush(connection_);
  }

 private:
  xcb_connection_t* connection_;
  xcb_window_t window_;
};

std::vector<xcb_atom_t> atomsOf(const Property& property) {
  std::vector<xcb_atom_t> atoms(property.bytes.size() / sizeof(xcb_atom_t));
  std::memcpy(atoms.data(), property.bytes.data(), property.bytes.size());
  return atoms;
}

xcb_timestamp_t timestampOf(Requestor& requestor) {
  const std::optional<Property> time = requestor.ask("TIMESTAMP");
  return time ? atomsOf(*time).at(0) : 0;
}

class Clipboard : public rig::OnScreen {
 protected:
  static void SetUpTestSuite() {
    OnScreen::SetUpTestSuite();
    threadsBefore_ = rig::settledThreadCount();
  }

  // The number of threads while no text is held.
  inline static std::size_t threadsBefore_ = 0;
};

TEST_F(Clipboard, AnswersInEveryFormOfText) {
  ASSERT_TRUE(clip::set_text("Ж é 'CR' "));
  Requestor requestor;
  const struct {
    const char* target;
    const char* type;
    const char* bytes;
  } forms[] = {{"UTF8_STRING", "UTF8_STRING", "Ж é 'CR' "},
               {"TEXT", "UTF8_STRING", "Ж é 'CR' "},
               {"text/plain;charset=utf-8", "text/plain;charset=utf-8", "Ж é 'CR' "},
               {"STRING", "STRING", "? \xE9 'CR' "}};
  for (const auto& form : forms) {
    const std::optional<Property> answer = requestor.ask(form.target);
    ASSERT_TRUE(answer) << form.target;
    EXPECT_EQ(answer->type, requestor.atom(form.type)) << form.target;
    EXPECT_EQ(answer->format, 8);
    EXPECT_EQ(answer->bytes, form.bytes) << form.target;
  }
}

TEST_F(Clipboard, NamesEveryFormItAnswersIn) {
  ASSERT_TRUE(clip::set_text("text"));
  Requestor requestor;
  const std::optional<Property> answer = requestor.ask("TARGETS");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->type, xcb_atom_t{XCB_ATOM_ATOM});
  std::vector<xcb_atom_t> named = atomsOf(*answer);
  std::vector<xcb_atom_t> expected;
  for (const char* const name : {"TARGETS", "MULTIPLE", "TIMESTAMP", "UTF8_STRING", "TEXT",
                                 "STRING", "text/plain;charset=utf-8"}) {
    expected.push_back(requestor.atom(name));
  }
  EXPECT_TRUE(std::is_permutation(named.begin(), named.end(), expected.begin(), expected.end()));
}

TEST_F(Clipboard, RefusesOtherForms) {
  ASSERT_TRUE(clip::set_text("text"));
  Requestor requestor;
  EXPECT_FALSE(requestor.ask("image/png"));
}

TEST_F(Clipboard, RefusesRequestsDatedBeforeItsOwnership) {
  ASSERT_TRUE(clip::set_text("text"));
  Requestor requestor;
  const xcb_timestamp_t since = timestampOf(requestor);
  ASSERT_NE(since, 0u);
  EXPECT_TRUE(requestor.ask("UTF8_STRING", since));
  EXPECT_FALSE(requestor.ask("UTF8_STRING", since - 1));
}

TEST_F(Clipboard, AnswersSeveralRequestsInOne) {
  ASSERT_TRUE(clip::set_text("text"));
  Requestor requestor;
  const xcb_atom_t list = requestor.atom("LIST");
  const xcb_atom_t pair = requestor.atom("ATOM_PAIR");
  const xcb_atom_t utf8 = requestor.atom("UTF8_STRING");
  const xcb_atom_t image = requestor.atom("image/png");
  const xcb_atom_t one = requestor.atom("ONE");
  const xcb_atom_t two = requestor.atom("TWO");
  requestor.write(list, pair, {utf8, one, image, two});
  ASSERT_TRUE(requestor.request(requestor.atom("MULTIPLE"), list));
  EXPECT_EQ(requestor.read(one).value().bytes, "text");
  EXPECT_FALSE(requestor.read(two));
  EXPECT_EQ(atomsOf(requestor.read(list).value()),
            (std::vector<xcb_atom_t>{utf8, one, image, XCB_NONE}));
}

TEST_F(Clipboard, RefusesSeveralRequestsWithoutAList) {
  ASSERT_TRUE(clip::set_text("text"));
  Requestor requestor;
  EXPECT_FALSE(requestor.request(requestor.atom("MULTIPLE"), requestor.atom("NO LIST")));
  EXPECT_FALSE(requestor.request(requestor.atom("MULTIPLE"), XCB_NONE));
}

// As obsolete clients do.
TEST_F(Clipboard, ChoosesThePropertyWhenTheRequestNamesNone) {
  ASSERT_TRUE(clip::set_text("text"));
  Requestor requestor;
  const xcb_atom_t utf8 = requestor.atom("UTF8_STRING");
  ASSERT_TRUE(requestor.request(utf8, XCB_NONE));
  EXPECT_EQ(requestor.read(utf8).value().bytes, "text");
}

TEST_F(Clipboard, HoldsTheLatestTextOnly) {
  ASSERT_TRUE(clip::set_text("first"));
  ASSERT_TRUE(clip::set_text(""));
  Requestor requestor;
  EXPECT_EQ(requestor.ask("UTF8_STRING").value().bytes, "");
  ASSERT_TRUE(clip::set_text("last"));
  EXPECT_EQ(requestor.ask("UTF8_STRING").value().bytes, "last");
  rig::await("the end of all threads but the last text's",
             [] { return rig::threadCount() == threadsBefore_ + 1; });
}

TEST_F(Clipboard, OutlivesARequestorThatVanishes) {
  ASSERT_TRUE(clip::set_text("text"));
  // Stays connected, or the server would give its IDs, and so the answer, to the next client.
  Requestor vanished;
  vanished.askAndVanish();
  Requestor requestor;
  EXPECT_EQ(requestor.ask("UTF8_STRING").value().bytes, "text");
}

// The owner serves on this thread, when everything has been asked.
TEST_F(Clipboard, OfAFloodAnswersAFewAndThenTheOthers) {
  ASSERT_TRUE(quorvel::openXcb());
  quorvel::SelectionOwner owner("text");
  ASSERT_TRUE(owner.take());
  Requestor flooding, other, taker;
  const xcb_atom_t utf8 = other.atom("UTF8_STRING");
  constexpr int kFlood = 5000;
  flooding.send(utf8, utf8, kFlood);
  other.send(utf8, utf8, 1);
  taker.take();
  owner.serve();
  EXPECT_TRUE(other.awaitAnswer(utf8));
  EXPECT_EQ(other.read(utf8).value().bytes, "text");
  const int answers = flooding.answersLeft();
  EXPECT_GT(answers, 0);
  EXPECT_LT(answers, kFlood);
}

TEST_F(Clipboard, KeepsTheTextWhenANewOneIsTooLong) {
  ASSERT_TRUE(clip::set_text("text"));
  // An X server takes 16 MiB in one request.
  EXPECT_FALSE(clip::set_text(std::string(17 << 20, 'x')));
  Requestor requestor;
  EXPECT_EQ(requestor.ask("UTF8_STRING").value().bytes, "text");
}

TEST_F(Clipboard, RefusesWithoutADisplay) {
  setenv("DISPLAY", ":9999", 1);
  EXPECT_FALSE(clip::set_text("text"));
  setenv("DISPLAY", rig::sharedXServer().display().c_str(), 1);
}

}  // namespace
