#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "dialog/GtkFunctions.h"
#include "dialog/RowQueue.h"

namespace quorvel {
namespace {

void runMainLoop() {
  while (g_main_context_iteration(nullptr, FALSE)) continue;
}

class RowQueueTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_TRUE(openGtk()); }
};

TEST_F(RowQueueTest, ShowsRowsInTheMainLoopInTheirOrder) {
  std::vector<std::string> shown;
  RowQueue queue([&](const Row& row) { shown.push_back(row.source + row.data); });
  queue.push({"A", "1"});
  queue.push({"B", "2"});
  EXPECT_TRUE(shown.empty());
  runMainLoop();
  EXPECT_EQ(shown, (std::vector<std::string>{"A1", "B2"}));
}

TEST_F(RowQueueTest, NeverShowsARowOnTheThreadThatPushesIt) {
  std::thread::id shownOn;
  RowQueue queue([&](const Row&) { shownOn = std::this_thread::get_id(); });
  std::thread([&] { queue.push({"A", "1"}); }).join();
  EXPECT_EQ(shownOn, std::thread::id());
  runMainLoop();
  EXPECT_EQ(shownOn, std::this_thread::get_id());
}

// More rows than are shown in one pass, and they keep coming.
TEST_F(RowQueueTest, LosesNoRowFromManyThreads) {
  constexpr int kThreads = 8;
  constexpr int kRows = 250;
  std::vector<int> next(kThreads, 0);
  int shown = 0;
  RowQueue queue([&](const Row& row) {
    EXPECT_EQ(row.data, std::to_string(next[std::stoul(row.source)]++));
    ++shown;
  });
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&queue, i] {
      for (int row = 0; row < kRows; ++row) queue.push({std::to_string(i), std::to_string(row)});
    });
  }
  while (shown < kThreads * kRows) g_main_context_iteration(nullptr, FALSE);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(shown, kThreads * kRows);
}

TEST_F(RowQueueTest, DropsRowsWhenItIsClosed) {
  int shown = 0;
  RowQueue queue([&](const Row&) { ++shown; });
  queue.push({"A", "waiting"});
  queue.close();
  queue.push({"A", "late"});
  runMainLoop();
  EXPECT_EQ(shown, 0);
}

TEST_F(RowQueueTest, MayBeClosedByARow) {
  int shown = 0;
  RowQueue* open = nullptr;
  RowQueue queue([&](const Row&) {
    ++shown;
    open->close();
  });
  open = &queue;
  queue.push({"A", "1"});
  queue.push({"A", "2"});
  runMainLoop();
  EXPECT_EQ(shown, 1);
}

}  // namespace
}  // namespace quorvel
