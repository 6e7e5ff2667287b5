// Who may use the list of networks when.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "ESSIDListTurn.h"

namespace {

using Use = ESSIDListTurn::Use;

TEST(ESSIDListTurnTest, AReaderGoesAwayFromAScanAndWaitsForOthers) {
  auto holder = std::make_unique<ESSIDListTurn>(Use::kScans);
  EXPECT_TRUE(holder->Mine());
  EXPECT_FALSE(ESSIDListTurn(Use::kReads).Mine());
  EXPECT_FALSE(ESSIDListTurn(Use::kReads).Mine()) << "going away takes nothing from the holder";
  for (const Use other : {Use::kReads, Use::kLooksUp}) {
    holder.reset();
    holder = std::make_unique<ESSIDListTurn>(other);
    std::atomic<bool> had = false;
    std::thread reader([&had] { had = ESSIDListTurn(Use::kReads).Mine(); });
    std::this_thread::yield();
    EXPECT_FALSE(had);
    holder.reset();
    reader.join();
    EXPECT_TRUE(had);
  }
}

TEST(ESSIDListTurnTest, AReaderThatWaitsGoesAwayWhenALookUpTurnsToAScan) {
  ESSIDListTurn holder(Use::kLooksUp);
  std::atomic<bool> had = true;
  std::thread reader([&had] { had = ESSIDListTurn(Use::kReads).Mine(); });
  holder.TurnsToScan();
  reader.join();
  EXPECT_FALSE(had);
}

TEST(ESSIDListTurnTest, OneAtATimeAndNobodyIsForgotten) {
  std::atomic<int> inside = 0;
  std::atomic<int> turns = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&, thread] {
      for (int i = 0; i < 2000; ++i) {
        const ESSIDListTurn turn((i + thread) % 2 == 0 ? Use::kScans : Use::kLooksUp);
        if (!turn.Mine() || ++inside != 1) break;
        ++turns;
        --inside;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(turns, 8000);
}

}  // namespace
