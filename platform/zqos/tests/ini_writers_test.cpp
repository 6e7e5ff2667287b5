// Many writers of one file, in threads and in processes, lose nothing.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "ini_helpers.h"
#include "temp_dir.h"

namespace {

constexpr int kKeys = 50;
constexpr char kHead[] = "; written by many\n\n[fixed]\n  first = 1\n# keep me\n\n";
constexpr char kTail[] = "[last]\nz=1 ; text\n";

std::string Key(int key) {
  return "key" + std::to_string(key);
}
std::string SectionOf(int writer) {
  return "writer" + std::to_string(writer);
}
std::string ValueOf(int writer, int key) {
  return std::to_string(writer) + '/' + std::to_string(key) + std::string(key, '.');
}

class IniWritersTest : public testing::Test {
 protected:
  IniWritersTest() { WriteFile(file_, std::string(kHead) + kTail); }

  bool WriteAllOf(int writer) const {
    for (int key = 0; key < kKeys; ++key) {
      if (!Set(SectionOf(writer).c_str(), Key(key).c_str(), ValueOf(writer, key), file_)) return false;
    }
    return true;
  }
  // Every value is there, and what stood before stands.
  void ExpectAllOf(int writers) const {
    for (int writer = 0; writer < writers; ++writer) {
      for (int key = 0; key < kKeys; ++key) {
        ASSERT_EQ(Value(SectionOf(writer).c_str(), Key(key).c_str(), file_), ValueOf(writer, key));
      }
    }
    EXPECT_TRUE(ReadFile(file_).starts_with(std::string(kHead) + kTail));
    EXPECT_EQ(NamesIn(folder_.Path()), std::set<std::string>{"settings.ini"});
  }

  TempDir folder_;
  std::string file_ = folder_ / "settings.ini";
};

TEST_F(IniWritersTest, SixteenThreadsLoseNothing) {
  constexpr int kThreads = 16;
  std::atomic<int> failures = 0;
  std::vector<std::thread> threads;
  for (int writer = 0; writer < kThreads; ++writer) {
    threads.emplace_back([this, writer, &failures] { failures += WriteAllOf(writer) ? 0 : 1; });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  ExpectAllOf(kThreads);
}

TEST_F(IniWritersTest, EightProcessesLoseNothing) {
  constexpr int kProcesses = 8;
  std::vector<pid_t> children;
  for (int writer = 0; writer < kProcesses; ++writer) {
    children.push_back(InChild([this, writer] { return WriteAllOf(writer) ? 0 : 1; }));
  }
  for (const pid_t child : children) EXPECT_EQ(AwaitChild(child), 0);
  ExpectAllOf(kProcesses);
}

TEST_F(IniWritersTest, WritersOfDifferentFilesInOneFolderDoNotDisturbEachOther) {
  constexpr int kThreads = 4;
  std::vector<std::thread> threads;
  for (int writer = 0; writer < kThreads; ++writer) {
    threads.emplace_back([this, writer] {
      const std::string file = folder_ / (SectionOf(writer) + ".ini");
      for (int key = 0; key < kKeys; ++key) Set("s", "x", ValueOf(writer, key), file);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int writer = 0; writer < kThreads; ++writer) {
    EXPECT_EQ(ReadFile(folder_ / (SectionOf(writer) + ".ini")),
              "[s]\nx=" + ValueOf(writer, kKeys - 1) + "\n");
  }
}

TEST_F(IniWritersTest, AReaderSeesAnOldOrANewValueWhileOthersWrite) {
  const std::string small(10, 'a');
  const std::string large(20000, 'b');
  ASSERT_TRUE(Set("s", "x", small, file_));
  std::atomic<bool> done = false;
  std::thread writer([&] {
    for (int i = 0; i < 200; ++i) Set("s", "x", i % 2 == 0 ? large : small, file_);
    done = true;
  });
  while (!done) {
    const std::string value = Value("s", "x", file_);
    if (value != small && value != large) ADD_FAILURE() << "half a value of " << value.size() << " bytes";
  }
  writer.join();
}

}  // namespace
