// GetParameters of the performer, in the language of the settings store.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "performer/AppSettings.h"
#include "tests/rig/Environment.h"
#include "tests/rig/ExpectedForm.h"
#include "tests/rig/HostCodes.h"
#include "tests/unit/performer/OpenPerformer.h"
#include "util/Text.h"

namespace quorvel {
namespace {

// Runs as if the machine had no devices.
class GetParameters : public testing::Test {
 protected:
  ~GetParameters() override { AppSettings::setLocale(localeBefore_); }

  std::string formIn(unsigned locale) {
    AppSettings::setLocale(locale);
    return wstr2str(performer_.GetParameters());
  }

  unsigned localeBefore_ = AppSettings::locale();
  rig::ScopedVariable path_{"PATH", ""};
  rig::ScopedVariable display_{"DISPLAY", std::nullopt};
  test::OpenPerformer performer_;
};

TEST_F(GetParameters, IsTheFormInTheLanguageOfTheLocale) {
  EXPECT_TRUE(rig::areSame(formIn(rig::kRussianLocale), rig::expectedForm("ru", "", "")));
  EXPECT_TRUE(rig::areSame(formIn(rig::kEnglishLocale), rig::expectedForm("en", "", "")));
}

TEST_F(GetParameters, CanBeCalledAgain) {
  const std::string once = formIn(rig::kRussianLocale);
  EXPECT_EQ(formIn(rig::kRussianLocale), once);
}

}  // namespace
}  // namespace quorvel
