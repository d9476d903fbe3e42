// What keys do in the device test window: those of a scanner that types, and those of a person.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/Program.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"

namespace {

using rig::Row;
using rig::TestWindow;
using terminal::Key;
using terminal::tap;
using terminal::tapWith;

constexpr Key kEscape{9};
constexpr Key kLetterP{33};
constexpr Key kLetterR{27};
constexpr Key kLetterJ{44};
constexpr Key kLetterL{46};
constexpr Key kLetterC{54};
constexpr Key kLeftAlt{64};
constexpr Key kSpace{65};

gboolean countKeys(GtkWidget*, GdkEvent* event, gpointer count) {
  if (event->type == GDK_KEY_RELEASE) ++*static_cast<int*>(count);
  return FALSE;
}

// A window with one row, which is selected, on an X server of its own. The keys go to the window.
class TestWindowKeys : public rig::WindowTest {
 protected:
  using Deeds = std::function<void(TestWindow&)>;

  void inFocus(const Deeds& deeds, const std::string& library = rig::libraryPath()) {
    terminal::SerialLine& scanner = plugIn("/dev/ttyUSB0");
    rig::inOwnProcess([&] {
      server_ = std::make_unique<rig::XServer>(std::vector<std::string>{"Scanner"});
      setenv("DISPLAY", server_->display().c_str(), 1);
      rig::Driver driver(u"InputDevice", library);
      rig::visitWindow(driver.component, [&](TestWindow& window) {
        g_signal_connect(window.dialog(), "event", G_CALLBACK(countKeys), &keys_);
        window.focus();
        scanner.send("row\r");
        window.awaitRows(1);
        window.select(0);
        deeds(window);
      });
      server_.reset();
    });
  }

  void setLayout(const std::string& layout) {
    rig::outputOf({"setxkbmap", "-display", server_->display(), "-rules", "evdev", "-model",
                   "pc105", "-layout", layout});
  }

  terminal::VirtualKeyboard& keyboard() { return server_->keyboard(0); }

  // Lets `typing` type that many keys at the same instant, and waits until the window has seen
  // them.
  void typeAtOnce(TestWindow& window, int keys, const std::function<void()>& typing) {
    const int before = keys_;
    keyboard();
    server_->pause();
    typing();
    server_->goOn();
    window.await("the keys", [&] { return keys_ == before + keys; });
  }

  void typeAtOnce(TestWindow& window, const std::vector<Key>& keys) {
    typeAtOnce(window, static_cast<int>(keys.size()), [&] {
      for (const Key key : keys) tap(keyboard(), key);
    });
  }

  // Waits longer than the window does to find that a key is alone.
  static void expectUntouched(TestWindow& window) {
    window.run(std::chrono::milliseconds(100));
    EXPECT_FALSE(window.response());
    EXPECT_EQ(window.row(0), (Row{"USB1:", "row 'CR' "}));
    EXPECT_EQ(window.selected(), 0);
  }

 private:
  std::unique_ptr<rig::XServer> server_;
  int keys_ = 0;  // released in the window
};

TEST_F(TestWindowKeys, FromAScanPressNoButton) {
  inFocus([this](TestWindow& window) {
    // Enter and space after any number of Tabs, that is, wherever the focus may be.
    for (std::size_t tabs = 0; tabs < 6; ++tabs) {
      for (const Key last : {Key::kReturn, kSpace, Key::kKeypadEnter}) {
        std::vector<Key> keys(tabs, Key::kTab);
        keys.push_back(last);
        typeAtOnce(window, keys);
        ASSERT_NO_FATAL_FAILURE(expectUntouched(window));
      }
    }
  });
}

TEST_F(TestWindowKeys, FromAScanWithAnEscapeDoNotClose) {
  inFocus([this](TestWindow& window) {
    constexpr Key kDigit{10};
    typeAtOnce(window, {kEscape, kDigit});
    typeAtOnce(window, {kDigit, kEscape});
    typeAtOnce(window, {kDigit, kEscape, kDigit});
    typeAtOnce(window, {kEscape, kEscape});
    typeAtOnce(window, {kEscape, Key::kReturn});
    expectUntouched(window);
  });
}

TEST_F(TestWindowKeys, FromAScanDoNotMoveTheSelection) {
  inFocus([this](TestWindow& window) {
    terminal::type(keyboard(), "another row\r");
    window.awaitRows(2);
    constexpr Key kUp{111};
    constexpr Key kDown{116};
    for (const Key key : {kDown, kUp, Key::kHome, Key::kEnd, Key::kPageUp, Key::kPageDown}) {
      typeAtOnce(window, {Key::kTab, key, kSpace});
      typeAtOnce(window, 2, [&] { tapWith(keyboard(), Key::kLeftControl, key); });
    }
    expectUntouched(window);
  });
}

TEST_F(TestWindowKeys, FromRandomScansChangeNothing) {
  inFocus([this](TestWindow& window) {
    std::mt19937 random(1);  // always the same keys
    std::uniform_int_distribution<unsigned> anyKey(9, 119);
    const auto next = [&] {
      // Control and Alt are held for one key; Caps Lock and Num Lock would stay on.
      for (;;) {
        const Key key{static_cast<std::uint8_t>(anyKey(random))};
        if (key != Key::kLeftControl && key != Key{105} && key != kLeftAlt &&
            key != Key::kRightAlt) {
          return key;
        }
      }
    };
    for (int scan = 0; scan < 20; ++scan) {
      std::vector<Key> keys;
      for (int i = 0; i < 50; ++i) keys.push_back(next());
      typeAtOnce(window, keys);
    }
    expectUntouched(window);
  });
}

TEST_F(TestWindowKeys, EscapeAloneCloses) {
  inFocus([this](TestWindow& window) {
    tap(keyboard(), kEscape);
    window.await("closing", [&] { return window.response().has_value(); });
    EXPECT_EQ(window.response(), GTK_RESPONSE_DELETE_EVENT);
  });
}

TEST_F(TestWindowKeys, AltAndF4Close) {
  inFocus([this](TestWindow& window) {
    tapWith(keyboard(), kLeftAlt, Key::kF4);
    window.await("closing", [&] { return window.response().has_value(); });
    EXPECT_EQ(window.response(), GTK_RESPONSE_DELETE_EVENT);
  });
}

TEST_F(TestWindowKeys, AltAndTheUnderlinedLetterPressAButton) {
  inFocus(
      [this](TestWindow& window) {
        tapWith(keyboard(), kLeftAlt, kLetterP);
        window.await("copying", [] { return rig::clipboard() == "row 'CR' "; });
        tapWith(keyboard(), kLeftAlt, kLetterL);
        window.await("clearing", [&] { return window.rowCount() == 0; });
        tapWith(keyboard(), kLeftAlt, kLetterC);
        window.await("closing", [&] { return window.response().has_value(); });
        EXPECT_EQ(window.response(), 1);
      },
      rig::englishLibraryPath());
}

// З, О and К, whichever layout the user writes in at the moment.
TEST_F(TestWindowKeys, AltAndTheUnderlinedLetterPressAButtonInRussian) {
  for (const std::string layouts : {"us,ru", "ru,us"}) {
    inFocus([&](TestWindow& window) {
      setLayout(layouts);
      tapWith(keyboard(), kLeftAlt, kLetterR);
      window.await("copying", [] { return rig::clipboard() == "row 'CR' "; });
      tapWith(keyboard(), kLeftAlt, kLetterJ);
      window.await("clearing", [&] { return window.rowCount() == 0; });
      tapWith(keyboard(), kLeftAlt, kLetterP);
      window.await("closing", [&] { return window.response().has_value(); });
      EXPECT_EQ(window.response(), 1);
    });
  }
}

TEST_F(TestWindowKeys, ControlAndCCopyTheSelectedRow) {
  inFocus([this](TestWindow& window) {
    tapWith(keyboard(), Key::kLeftControl, kLetterC);
    window.await("copying", [] { return rig::clipboard() == "row 'CR' "; });
  });
}

TEST_F(TestWindowKeys, ControlAndCCopyInARussianLayout) {
  inFocus([this](TestWindow& window) {
    setLayout("ru,us");
    tapWith(keyboard(), Key::kLeftControl, kLetterC);
    window.await("copying", [] { return rig::clipboard() == "row 'CR' "; });
  });
}

}  // namespace
