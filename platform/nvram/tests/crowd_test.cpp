// Many at once: threads of one process, processes, and the boot loader's tools between them.
#include <thread>

#include "child_process.h"
#include "nvram_fixture.h"
#include "run_program.h"

namespace {

class NvramCrowdTest : public NvramTest {
 protected:
  // One more on the number under the key, in one turn.
  static bool Count(const std::string& key) {
    const int handle = nvram_open(0, 0);
    if (handle < 0) return false;
    char buffer[16] = "0";
    nvram_read_key(handle, nullptr, key.c_str(), buffer, sizeof buffer);
    const std::string next = std::to_string(std::atoi(buffer) + 1);
    const bool written = nvram_write_key(handle, nullptr, key.c_str(), next.c_str()) == 0;
    return nvram_close(handle) == 0 && written;
  }
};

TEST_F(NvramCrowdTest, EightThreadsLoseNothing) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 200;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([i] {
      for (int round = 0; round < kRounds; ++round) {
        EXPECT_TRUE(Count("all"));
        if (round % 20 == 0) {
          EXPECT_EQ(Put("mine" + std::to_string(i), std::to_string(round)), 0);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Value("all"), std::to_string(kThreads * kRounds));
  for (int i = 0; i < kThreads; ++i) EXPECT_EQ(Value("mine" + std::to_string(i)), "180");
}

TEST_F(NvramCrowdTest, FourProcessesLoseNothing) {
  constexpr int kProcesses = 4;
  constexpr int kRounds = 100;
  std::vector<pid_t> children;
  for (int i = 0; i < kProcesses; ++i) {
    children.push_back(InChild([] {
      for (int round = 0; round < kRounds; ++round) {
        if (!Count("all")) return 1;
      }
      return 0;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(AwaitChild(child), 0);
  EXPECT_EQ(Value("all"), std::to_string(kProcesses * kRounds));
}

TEST_F(NvramCrowdTest, TheBootLoadersToolsLoseNothingBetweenThem) {
  ASSERT_TRUE(CanOpen());
  constexpr int kRounds = 20;
  std::thread tool([this] {
    for (int round = 0; round < kRounds; ++round)
      EXPECT_EQ(RunProgram({"fw_setenv", "-c", config_, "tool" + std::to_string(round), "x"}).status, 0);
  });
  for (int round = 0; round < kRounds * 5; ++round) EXPECT_TRUE(Count("all"));
  tool.join();
  EXPECT_EQ(Value("all"), std::to_string(kRounds * 5));
  for (int round = 0; round < kRounds; ++round) EXPECT_EQ(Value("tool" + std::to_string(round)), "x");
}

}  // namespace
