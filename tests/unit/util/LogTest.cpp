#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <locale>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include "util/Log.h"

namespace quorvel {
namespace {

std::string threadIdText() {
  std::ostringstream text;
  text << std::this_thread::get_id();
  return text.str();
}

std::set<std::string> logFiles() {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kLogFolder)) {
    const std::string name = entry.path().filename();
    if (name.rfind("Quorvel_", 0) == 0) names.insert(name);
  }
  return names;
}

TEST(LogFileName, ContainsWordSizeThreadAndTime) {
  const std::string wordSize = sizeof(void*) == 4 ? "32" : "64";
  EXPECT_THAT(getLogFileName(), testing::MatchesRegex("Quorvel_x" + wordSize + "_t" +
                                                      threadIdText() + "_[0-9]{14}\\.txt"));
}

TEST(LogFileName, ContainsTheLocalTimeOfTheCall) {
  std::string name;
  std::time_t before;
  char stamp[20];
  do {
    before = std::time(nullptr);
    name = getLogFileName();
    std::strftime(stamp, sizeof stamp, "%Y%m%d%H%M%S", std::localtime(&before));
  } while (std::time(nullptr) != before);
  EXPECT_NE(name.find("_" + std::string(stamp) + ".txt"), name.npos) << name;
}

TEST(LogFileName, IsTheSameWithinOneThreadAndSecond) {
  std::string first, second;
  std::time_t before;
  do {
    before = std::time(nullptr);
    first = getLogFileName();
    second = getLogFileName();
  } while (std::time(nullptr) != before);
  EXPECT_EQ(first, second);
}

TEST(LogFileName, DiffersBetweenThreads) {
  std::string other;
  std::thread([&] { other = getLogFileName(); }).join();
  const std::string mine = getLogFileName();
  EXPECT_NE(mine.substr(0, mine.rfind('_')), other.substr(0, other.rfind('_')));
}

TEST(LogFileName, IgnoresDigitGroupingOfTheLocale) {
  class Grouping : public std::numpunct<char> {
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
  const std::string name = getLogFileName();
  std::locale::global(before);
  EXPECT_EQ(name.find(','), name.npos) << name;
}

TEST(Log, IgnoresTheFolder) {
  EXPECT_EQ(kLogFolder, "/tmp/");
  Logger logger;
  EXPECT_TRUE(logger.SetLogFolder(L""));
  EXPECT_TRUE(logger.SetLogFolder(L"/nowhere"));
  EXPECT_TRUE(logger.SetLogFolder(std::wstring(10000, L'x')));
}

TEST(Log, WritesNoFile) {
  const std::set<std::string> before = logFiles();
  Logger logger;
  logger.SetLogFolder(L"/tmp/");
  logger.LogToFile(L"text");
  logger.LogToFile(std::wstring(10000, L'x'));
  log(std::wstring(L"text"));
  log(std::string(10000, 'x'));
  EXPECT_EQ(logFiles(), before);
}

}  // namespace
}  // namespace quorvel
