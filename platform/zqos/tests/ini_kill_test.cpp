// Writers that are killed at random instants of a storm of writes.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>

#include <atomic>
#include <chrono>
#include <new>
#include <random>

#include "ini_helpers.h"
#include "storm_rounds.h"
#include "temp_dir.h"

namespace {

constexpr int kWriters = 3;

// What the writers tell the test: how far each has come. Lives in memory that the processes share.
struct Progress {
  std::atomic<long> completed[kWriters];
};

class IniKillTest : public testing::Test {
 protected:
  IniKillTest() {
    void* shared = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    progress_ = new (shared) Progress{};
    std::string text = "; storm\n";
    for (int writer = 0; writer < kWriters; ++writer) {
      text += "[w" + std::to_string(writer) + "]\n# keep\nx=" + ValueOf(0) + "\n\n";
    }
    WriteFile(file_, text);
  }
  ~IniKillTest() override { munmap(progress_, sizeof(Progress)); }

  // The number, and a filling whose length it tells, so that a value cut anywhere is known as one.
  static std::string ValueOf(long number) {
    return std::to_string(number) + ':' + std::string(static_cast<size_t>(number * 37 % 9000), 'v') + ";";
  }
  std::string Read(int writer) const { return Value(("w" + std::to_string(writer)).c_str(), "x", file_); }

  // Writes one number after the other until it is killed.
  pid_t Start(int writer, long number) const {
    return InChild([this, writer, number] {
      const std::string section = "w" + std::to_string(writer);
      for (long next = number;; ++next) {
        if (!Set(section.c_str(), "x", ValueOf(next), file_)) return 1;
        progress_->completed[writer] = next;
      }
    });
  }

  TempDir folder_;
  std::string file_ = folder_ / "settings.ini";
  Progress* progress_;
};

TEST_F(IniKillTest, KilledWritersLeaveWholeValuesAndNothingElse) {
  std::mt19937 random(4711);
  std::uniform_int_distribution<int> someMicroseconds(0, 400);
  pid_t children[kWriters];
  for (int writer = 0; writer < kWriters; ++writer) children[writer] = Start(writer, 1);

  long interrupted = 0;
  for (int round = 0; round < kStormRounds && !HasFailure(); ++round) {
    const int writer = round % kWriters;
    // In the midst of its writes, at any point of one.
    const long seen = progress_->completed[writer];
    while (progress_->completed[writer] == seen) sched_yield();
    const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(someMicroseconds(random));
    while (std::chrono::steady_clock::now() < until) {
    }
    kill(children[writer], SIGKILL);
    ASSERT_EQ(AwaitChild(children[writer]), -SIGKILL);

    const long completed = progress_->completed[writer];
    const std::string value = Read(writer);
    EXPECT_TRUE(value == ValueOf(completed) || value == ValueOf(completed + 1)) << completed << ": " << value;
    interrupted += value == ValueOf(completed + 1) ? 1 : 0;
    children[writer] = Start(writer, completed + 2);
  }
  for (const pid_t child : children) {
    kill(child, SIGKILL);
    AwaitChild(child);
  }
  // The storm did hit writes, not only the time between them.
  EXPECT_GT(interrupted, 0);

  for (int writer = 0; writer < kWriters; ++writer) {
    ASSERT_TRUE(Set(("w" + std::to_string(writer)).c_str(), "x", "end", file_));
  }
  EXPECT_EQ(ReadFile(file_),
            "; storm\n[w0]\n# keep\nx=end\n\n[w1]\n# keep\nx=end\n\n[w2]\n# keep\nx=end\n\n");
  EXPECT_EQ(NamesIn(folder_.Path()), std::set<std::string>{"settings.ini"});
}

}  // namespace
