// Writers that are killed at random instants.
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>

#include <atomic>
#include <chrono>
#include <new>
#include <random>

#include "child_process.h"
#include "nvram_fixture.h"
#include "storm_rounds.h"

namespace {

class NvramKillTest : public NvramTest {
 protected:
  // Its length differs from its neighbours', so that a value cut anywhere is known as one.
  static std::string ValueOf(long number) {
    return std::to_string(number) + ":" + std::string(static_cast<size_t>(number * 37 % 3000), 'v') + ";";
  }
};

TEST_F(NvramKillTest, KilledWritersLeaveEveryKeyWhole) {
  void* memory =
      mmap(nullptr, sizeof(std::atomic<long>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  auto& completed = *new (memory) std::atomic<long>(0);
  std::mt19937 random(815);
  std::uniform_int_distribution<int> someMicroseconds(0, 1500);
  Put("kept", "yes");
  Put("key", ValueOf(0));
  long interrupted = 0;
  for (int round = 0; round < kStormRounds && !HasFailure(); ++round) {
    const long before = completed;
    const pid_t child = InChild([&] {
      for (long number = before + 1;; ++number) {
        if (Put("key", ValueOf(number)) != 0) return 1;
        completed = number;
      }
    });
    // In the midst of a later write, at any point of it.
    while (completed == before) sched_yield();
    const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(someMicroseconds(random));
    while (std::chrono::steady_clock::now() < until) sched_yield();
    kill(child, SIGKILL);
    ASSERT_EQ(AwaitChild(child), -SIGKILL);
    const std::string value = Value("key");
    EXPECT_TRUE(value == ValueOf(completed) || value == ValueOf(completed + 1)) << completed << ": " << value;
    EXPECT_EQ(Value("kept"), "yes");
    if (value == ValueOf(completed + 1)) {
      ++interrupted;
      ++completed;
    }
  }
  RecordProperty("killed_between_write_and_return", std::to_string(interrupted));
  munmap(memory, sizeof(std::atomic<long>));
}

}  // namespace
