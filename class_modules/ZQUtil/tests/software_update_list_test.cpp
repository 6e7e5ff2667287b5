// The list of updates, while one thread replaces it and others read.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "SoftwareUpdateList.h"

namespace {

std::vector<OfferedUpdate> Updates(int32_t first, int32_t count) {
  std::vector<OfferedUpdate> updates;
  for (int32_t i = 0; i < count; ++i)
    updates.push_back({first, "comment " + std::to_string(first), "path", false});
  return updates;
}

TEST(SoftwareUpdateList, IsEmptyBeforeTheFirstAndAfterTheLast) {
  ReleaseSoftwareUpdateList();
  EXPECT_TRUE(SoftwareUpdateListReader().Updates().empty());
  ReplaceSoftwareUpdateList(Updates(1, 3));
  EXPECT_EQ(SoftwareUpdateListReader().Updates().size(), 3U);
  ReleaseSoftwareUpdateList();
  EXPECT_TRUE(SoftwareUpdateListReader().Updates().empty());
}

TEST(SoftwareUpdateList, FindsTheFirstOfAnId) {
  ReplaceSoftwareUpdateList({{1, "a", "first", false}, {2, "b", "second", false}, {1, "c", "third", true}});
  const SoftwareUpdateListReader list;
  ASSERT_NE(list.Find(1), nullptr);
  EXPECT_EQ(list.Find(1)->path, "first");
  EXPECT_EQ(list.Find(3), nullptr);
}

TEST(SoftwareUpdateList, AReaderKeepsTheListItBeganWith) {
  ReplaceSoftwareUpdateList(Updates(1, 2));
  {
    const SoftwareUpdateListReader before;
    ReplaceSoftwareUpdateList(Updates(2, 5));
    ReleaseSoftwareUpdateList();
    EXPECT_EQ(before.Updates().size(), 2U);
    EXPECT_EQ(before.Updates()[1].comment, "comment 1");
    EXPECT_TRUE(SoftwareUpdateListReader().Updates().empty());
  }
  ReleaseSoftwareUpdateList();
}

TEST(SoftwareUpdateList, ReadersAndWritersOfAllThreadsSeeWholeLists) {
  ReleaseSoftwareUpdateList();
  std::atomic<bool> over = false;
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int reader = 0; reader < 3; ++reader) {
    threads.emplace_back([&] {
      while (!over) {
        const SoftwareUpdateListReader list;
        const auto& updates = list.Updates();
        if (!updates.empty() && updates.size() != static_cast<size_t>(updates.front().id)) ++wrong;
        for (const OfferedUpdate& update : updates) {
          if (update.comment != "comment " + std::to_string(updates.front().id)) ++wrong;
        }
      }
    });
  }
  for (int writer = 0; writer < 2; ++writer) {
    threads.emplace_back([&] {
      for (int32_t i = 0; i < 2000; ++i) {
        ReplaceSoftwareUpdateList(Updates(1 + i % 7, 1 + i % 7));
        if (i % 50 == 0) ReleaseSoftwareUpdateList();
      }
    });
  }
  threads[3].join();
  threads[4].join();
  over = true;
  for (int reader = 0; reader < 3; ++reader) threads[static_cast<size_t>(reader)].join();
  EXPECT_EQ(wrong, 0);
  ReleaseSoftwareUpdateList();
}

}  // namespace
