#include <gtest/gtest.h>

#include <cstdlib>

#include "dialog/DevTestDialogLinux.h"
#include "dialog/GtkFunctions.h"

namespace quorvel {
namespace {

using Dialog = DevTestDialogLinux;

Dialog dialogIn(bool russian) { return {{}, {}, russian, 0}; }

TEST(DevTestDialog, HasItsTextsInRussian) {
  const Dialog dialog({}, {}, true, 0);
  EXPECT_TRUE(dialog.IsRussian());
  EXPECT_EQ(dialog.LoadString(Dialog::kCloseButton), "Закрыть");
  EXPECT_EQ(dialog.LoadString(Dialog::kClearButton), "Очистить");
  EXPECT_EQ(dialog.LoadString(Dialog::kCopyButton), "Копировать");
  EXPECT_EQ(dialog.LoadString(Dialog::kTitle), "Тест устройства");
  EXPECT_EQ(dialog.LoadString(Dialog::kTimeoutLabel), "Таймаут");
}

TEST(DevTestDialog, HasItsTextsInEnglish) {
  const Dialog dialog = dialogIn(false);
  EXPECT_FALSE(dialog.IsRussian());
  EXPECT_EQ(dialog.LoadString(Dialog::kCloseButton), "Close");
  EXPECT_EQ(dialog.LoadString(Dialog::kClearButton), "Clear");
  EXPECT_EQ(dialog.LoadString(Dialog::kCopyButton), "Copy");
  EXPECT_EQ(dialog.LoadString(Dialog::kTitle), "Device test");
  EXPECT_EQ(dialog.LoadString(Dialog::kTimeoutLabel), "Timeout");
}

TEST(DevTestDialog, NumbersItsTexts) {
  EXPECT_EQ(Dialog::kCloseButton, 0);
  EXPECT_EQ(Dialog::kTimeoutLabel, 4);
}

TEST(DevTestDialog, HasNoOtherTexts) {
  const Dialog dialog = dialogIn(true);
  EXPECT_EQ(dialog.LoadString(static_cast<Dialog::STRING_ID>(5)), "");
  EXPECT_EQ(dialog.LoadString(static_cast<Dialog::STRING_ID>(-1)), "");
}

// A message that comes while no window is open is not kept for the next one.
TEST(DevTestDialog, DropsAMessageWithoutAWindow) {
  ASSERT_TRUE(openGtk());
  {
    Dialog dialog = dialogIn(true);
    dialog.OnInput(L"COM1", L"MTIz");
    while (g_main_context_iteration(nullptr, FALSE)) continue;
    dialog.OnInput(L"COM1", L"MTIz");
  }
  EXPECT_FALSE(g_main_context_pending(nullptr));
}

TEST(DevTestDialog, IgnoresAnEmptyMessage) {
  Dialog dialog = dialogIn(true);
  dialog.OnInput(L"COM1", L"");
  EXPECT_FALSE(g_main_context_pending(nullptr));
}

}  // namespace
}  // namespace quorvel
