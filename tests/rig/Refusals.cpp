#include "tests/rig/Refusals.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace rig {
namespace {

void expectRefusalIn(const char* locale, const std::string& program, const Refusal& refusal,
                     const char* message) {
  Words words = {program};
  words.insert(words.end(), refusal.words.begin(), refusal.words.end());
  const Ending ending = run(words, {{"LC_ALL", locale}, {"DISPLAY", ""}});
  EXPECT_EQ(ending.code, refusal.code) << ending.errors;
  EXPECT_EQ(ending.output, "");
  const std::string start = std::filesystem::path(program).filename().string() + ": ";
  EXPECT_TRUE(ending.errors.starts_with(start)) << ending.errors;
  EXPECT_EQ(ending.errors.find('\n'), ending.errors.size() - 1) << ending.errors;
  if (message) {
    EXPECT_EQ(ending.errors, start + message + "\n");
  }
}

}  // namespace

void expectRefusal(const std::string& program, const Refusal& refusal) {
  expectRefusalIn("C.UTF-8", program, refusal, refusal.english);
  expectRefusalIn("ru_RU.UTF-8", program, refusal, refusal.russian);
}

}  // namespace rig
