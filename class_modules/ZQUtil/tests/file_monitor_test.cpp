// File monitors: who is called when a file is modified, and when no longer.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <semaphore>
#include <thread>
#include <vector>

#include "ZQFileMonitor.h"
#include "file_rights.h"
#include "heard_calls.h"
#include "temp_dir.h"
#include "trace_capture.h"

namespace fs = std::filesystem;

namespace {

// Never destroyed: the monitors' thread outlives the tests.
HeardCalls& g_heard = *new HeardCalls;

void First(char const* path) {
  g_heard.Add(std::string("first ") + path);
}
void Second(char const* path) {
  g_heard.Add(std::string("second ") + path);
}

// The monitors' inotify instance, which the process has when a monitor was started.
int InotifyDescriptor() {
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    if (fs::read_symlink(entry, error).string().find("inotify") != std::string::npos)
      return std::stoi(entry.path().filename());
  }
  return -1;
}

class FileMonitorTest : public testing::Test {
 protected:
  FileMonitorTest() { g_heard.Clear(); }
  ~FileMonitorTest() override {
    // What is still registered, and events under way, must not reach the next test.
    for (const auto& [path, callback] : registered_) deregisterFileMonitor(path.c_str(), callback);
    Fence();
  }

  void Register(const std::string& path, void (*callback)(char const*) = First) {
    registerFileMonitor(path.c_str(), callback);
    registered_.emplace_back(path, callback);
  }
  static void Deregister(const std::string& path, void (*callback)(char const*) = First) {
    deregisterFileMonitor(path.c_str(), callback);
  }
  // Returns when the thread has read all events until now: into a full queue goes no other.
  static void AwaitRoom() {
    const int inotify = InotifyDescriptor();
    for (int bytes = 1; ioctl(inotify, FIONREAD, &bytes) == 0 && bytes > 0;) std::this_thread::yield();
  }
  // Returns when the thread has handled all events until now.
  static void Fence() {
    static std::binary_semaphore passed(0);
    static const TempDir place;
    static const std::string path = [] {
      WriteFile(place / "fence", "");
      registerFileMonitor((place / "fence").c_str(), [](char const*) { passed.release(); });
      return place / "fence";
    }();
    AwaitRoom();
    Modify(path);
    passed.acquire();
  }
  std::string File(const std::string& name) {
    WriteFile(folder / name, "");
    return folder / name;
  }
  // The traces about this path, or all that name none of the fence's.
  std::string Traces() const {
    std::string all;
    for (const std::string& text : trace.Texts()) {
      if (text.find("fence") == std::string::npos && text != "FileMonitor: Starting File Monitor")
        all += text + "\n";
    }
    return all;
  }
  long CountNotFound() const {
    const std::vector<std::string> texts = trace.Texts();
    return std::ranges::count(texts, "FileMonitor: ++ watch id not found in map ++");
  }

  TempDir folder;
  TraceCapture trace;

 private:
  std::vector<std::pair<std::string, void (*)(char const*)>> registered_;
};

TEST_F(FileMonitorTest, EachModificationCallsWithThePathAsRegistered) {
  File("a");
  fs::create_directory(folder / "sub");
  const std::string path = folder / "sub/../a";
  Register(path);
  for (size_t i = 1; i <= 20; ++i) {
    Modify(path);
    g_heard.Await(i);
  }
  Fence();
  EXPECT_EQ(g_heard.Count("first " + path), 20U);
  EXPECT_EQ(g_heard.Total(), 20U);
}

TEST_F(FileMonitorTest, ReadingOrAnotherModeIsNoModification) {
  const std::string path = File("a");
  Register(path);
  ReadFile(path);
  fs::permissions(path, fs::perms::owner_all);
  Fence();
  EXPECT_EQ(g_heard.Total(), 0U);
}

TEST_F(FileMonitorTest, ASecondRegistrationOfTheSameIsRefused) {
  const std::string path = File("a");
  Register(path);
  Register(path);
  EXPECT_EQ(Traces(), "FileMonitor: monitoring started for '" + path + "'\n" +
                          "FileMonitor: Monitor already registered for '" + path + "'\n");
  Modify(path);
  Fence();
  EXPECT_EQ(g_heard.Total(), 1U);
}

TEST_F(FileMonitorTest, OfTwoCallbacksTheLatestIsTheFilesOnlyOne) {
  const std::string path = File("a");
  Register(path, First);
  Register(path, Second);
  Modify(path);
  g_heard.Await(1);
  EXPECT_EQ(g_heard.Count("second " + path), 1U);
  Deregister(path, First);  // is no longer there
  Modify(path);
  g_heard.Await(2);
  EXPECT_EQ(g_heard.Count("second " + path), 2U);
  Deregister(path, Second);
  Modify(path);
  Fence();
  EXPECT_EQ(g_heard.Total(), 2U);
  EXPECT_EQ(g_heard.Count("first " + path), 0U);
  EXPECT_EQ(Traces(), "FileMonitor: monitoring started for '" + path + "'\n" +
                          "FileMonitor: monitoring started for '" + path + "'\n" +
                          "FileMonitor: ++ watch id not found in map ++\n");
}

TEST_F(FileMonitorTest, OfTwoNamesTheLatestIsTheFilesOnlyOne) {
  const std::string path = File("a");
  fs::create_hard_link(path, folder / "b");
  Register(path);
  Register(folder / "b");
  Modify(path);
  Fence();
  EXPECT_EQ(g_heard.Count("first " + (folder / "b")), 1U);
  EXPECT_EQ(g_heard.Total(), 1U);
}

TEST_F(FileMonitorTest, AfterItsEndNobodyIsCalledAndTheEndIsFoundOnce) {
  const std::string path = File("a");
  Register(path);
  Deregister(path);
  Deregister(path);
  Modify(path);
  Fence();
  EXPECT_EQ(g_heard.Total(), 0U);
  EXPECT_EQ(Traces(), "FileMonitor: monitoring started for '" + path + "'\n" +
                          "FileMonitor: ++ watch id not found in map ++\n");
}

TEST_F(FileMonitorTest, AThousandFilesEachCallWithTheirOwnPath) {
  for (int i = 0; i < 1000; ++i) Register(File(std::to_string(i)), i % 2 == 0 ? First : Second);
  for (int i = 999; i >= 0; --i) Modify(folder / std::to_string(i));
  g_heard.Await(1000);
  Fence();
  for (int i = 0; i < 1000; ++i) {
    const std::string path = folder / std::to_string(i);
    EXPECT_EQ(g_heard.Count((i % 2 == 0 ? "first " : "second ") + path), 1U);
  }
  EXPECT_EQ(g_heard.Total(), 1000U);
}

TEST_F(FileMonitorTest, AFileThatIsRenamedKeepsItsMonitorAndItsOldName) {
  const std::string path = File("a");
  Register(path);
  fs::rename(path, folder / "b");
  Modify(folder / "b");
  g_heard.Await(1);
  EXPECT_EQ(g_heard.Count("first " + path), 1U);
}

TEST_F(FileMonitorTest, TheFileThatTakesItsPlaceNeedsARegistrationOfItsOwn) {
  const std::string path = File("a");
  Register(path);
  WriteFile(folder / "new", "new");
  fs::rename(folder / "new", path);  // the old file is gone
  g_heard.Await(1);
  EXPECT_EQ(g_heard.Count("first " + path), 1U) << "the end of the watch is an event too";
  Modify(path);
  Fence();
  EXPECT_EQ(g_heard.Total(), 1U) << "the new file is not monitored";
  Register(path);
  EXPECT_TRUE(trace.Has("FileMonitor: Monitor already registered for '" + path + "'"));
  Deregister(path);
  EXPECT_TRUE(trace.Has("FileMonitor: failed to remove monitor for '" + path + "' (Invalid argument)"));
  Register(path);
  Modify(path);
  g_heard.Await(2);
}

TEST_F(FileMonitorTest, AFileThatIsDeletedAndMadeAgainIsAnother) {
  const std::string path = File("a");
  Register(path);
  fs::remove(path);
  g_heard.Await(1);
  WriteFile(path, "again");
  Modify(path);
  Fence();
  EXPECT_EQ(g_heard.Total(), 1U);
  Deregister(path);
  Register(path);
  Modify(path);
  g_heard.Await(2);
}

TEST_F(FileMonitorTest, AFileThatMayNotBeReadIsNotMonitored) {
  const std::string path = File("a");
  fs::permissions(path, fs::perms::none);
  {
    const OrdinaryFileRights ordinary;
    Register(path);
  }
  EXPECT_EQ(Traces(), "FileMonitor: failed to start monitoring for '" + path + "' (Permission denied)\n");
}

TEST_F(FileMonitorTest, AFolderHearsOfItsFiles) {
  fs::create_directory(folder / "sub");
  WriteFile(folder / "sub/file-with-a-name", "");
  Register(folder / "sub");
  Modify(folder / "sub/file-with-a-name");
  g_heard.Await(1);
  EXPECT_EQ(g_heard.Count("first " + (folder / "sub")), 1U);
  EXPECT_TRUE(trace.Has("FileMonitor: failed to read inotify handle (Invalid argument)"));
  Fence();
  EXPECT_EQ(g_heard.Total(), 1U);
}

TEST_F(FileMonitorTest, OfALongPathTheFirst255CharactersAreKept) {
  fs::path path = folder.Path();
  while (path.string().size() < 300) path /= std::string(40, 'd');
  fs::create_directories(path.parent_path());
  WriteFile(path, "");
  Register(path);
  Modify(path);
  g_heard.Await(1);
  EXPECT_EQ(g_heard.Count("first " + path.string().substr(0, 255)), 1U);
  Deregister(path);
  Modify(path);
  g_heard.Await(2);
  fs::remove(path);
  g_heard.Await(3);
}

TEST_F(FileMonitorTest, OddNamesAreOnlyNames) {
  for (const std::string& name :
       {std::string("%s%n"), std::string("a\nb"), std::string("\xff'\""), std::string(" ")}) {
    const size_t before = g_heard.Total();
    const std::string path = File(name);
    Register(path);
    Modify(path);
    g_heard.Await(before + 1);
    EXPECT_EQ(g_heard.Count("first " + path), 1U);
  }
}

// What the callbacks of the next test act upon.
std::string& g_other = *new std::string;
void DeregisterItselfAndRegisterAnother(char const* path) {
  deregisterFileMonitor(path, DeregisterItselfAndRegisterAnother);
  registerFileMonitor(g_other.c_str(), First);
  g_heard.Add("turned");
}

TEST_F(FileMonitorTest, ACallbackMayDeregisterItselfAndRegisterAnother) {
  const std::string path = File("a");
  g_other = File("b");
  Register(path, DeregisterItselfAndRegisterAnother);
  Modify(path);
  g_heard.Await(1);
  Modify(path);
  Modify(g_other);
  g_heard.Await(2);
  Fence();
  EXPECT_EQ(g_heard.Count("turned"), 1U);
  EXPECT_EQ(g_heard.Count("first " + g_other), 1U);
  Deregister(g_other);
}

std::binary_semaphore g_inCallback(0);
std::binary_semaphore g_mayReturn(0);
void Hold(char const* path) {
  g_inCallback.release();
  g_mayReturn.acquire();
  g_heard.Add(path);
}

TEST_F(FileMonitorTest, AMonitorEndsWhileItsCallbackRuns) {
  const std::string path = File("a");
  Register(path, Hold);
  Modify(path);
  g_inCallback.acquire();
  Modify(path);  // waits behind the callback
  Deregister(path, Hold);
  Register(path, First);
  g_mayReturn.release();
  Fence();
  EXPECT_EQ(g_heard.Count(path), 1U) << "its path is whole although its record is gone";
  Modify(path);
  g_heard.Await(2);
}

TEST_F(FileMonitorTest, AQueueThatOverflowsLosesEventsAndNothingElse) {
  // The limit is the machine's, not the device's.
  size_t limit = 0;
  std::ifstream("/proc/self/root/proc/sys/fs/inotify/max_queued_events") >> limit;
  ASSERT_GT(limit, 0U);
  const std::string held = File("held");
  const std::string paths[] = {File("a"), File("b")};
  Register(held, Hold);
  for (const std::string& path : paths) Register(path);
  Modify(held);
  g_inCallback.acquire();
  const int files[] = {open(paths[0].c_str(), O_WRONLY | O_CLOEXEC),
                       open(paths[1].c_str(), O_WRONLY | O_CLOEXEC)};
  // Turn by turn: the kernel makes one of equal events that follow each other.
  for (size_t i = 0; i < limit + 1000; ++i) ASSERT_EQ(pwrite(files[i % 2], "x", 1, 0), 1);
  g_mayReturn.release();
  g_heard.Await(limit / 2);
  while (CountNotFound() < 1) std::this_thread::yield();
  for (const int file : files) close(file);
  Fence();
  EXPECT_LE(g_heard.Total(), limit + 1);
  EXPECT_EQ(CountNotFound(), 1) << "the overflow is an event of no file";
  g_heard.Clear();
  Modify(paths[0]);
  g_heard.Await(1);
}

TEST_F(FileMonitorTest, AFailedReadIsTracedAndReadAgain) {
  const std::string path = File("a");
  Register(path);
  const int inotify = InotifyDescriptor();
  ASSERT_GE(inotify, 0);
  const int kept = dup(inotify);
  const int broken = open(folder.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(dup2(broken, inotify), inotify);
  const size_t before = fs::file_size(trace.Path());
  Modify(path);  // takes the thread out of the read that it may be in
  // It reads again without a pause, so its traces are counted by their size until it can.
  while (fs::file_size(trace.Path()) < before + 1000) std::this_thread::yield();
  ASSERT_EQ(dup2(kept, inotify), inotify);
  EXPECT_TRUE(trace.Has("FileMonitor: failed to read inotify handle (Is a directory)"));
  close(kept);
  close(broken);
  g_heard.Await(1);  // or the kernel might make one event of the two
  Modify(path);
  g_heard.Await(2);
}

TEST_F(FileMonitorTest, MonitorsComeAndGoWhileEventsArrive) {
  constexpr int kFiles = 8;
  std::vector<std::string> paths;
  for (int i = 0; i < kFiles; ++i) paths.push_back(File(std::to_string(i)));
  std::atomic<bool> done = false;
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([&, t] {
      while (!done) {
        for (int i = t; i < kFiles; i += 2) Modify(paths[static_cast<size_t>(i)]);
      }
    });
    threads.emplace_back([&, t] {
      for (int round = 0; round < 300; ++round) {
        const std::string& path = paths[static_cast<size_t>(round % kFiles)];
        registerFileMonitor(path.c_str(), t == 0 ? First : Second);
        std::this_thread::yield();
        deregisterFileMonitor(path.c_str(), t == 0 ? First : Second);
      }
    });
  }
  threads[1].join();
  threads[3].join();
  done = true;
  threads[0].join();
  threads[2].join();
  for (const std::string& path : paths) {
    Deregister(path, First);
    Deregister(path, Second);
  }
  Fence();
  g_heard.Clear();
  for (const std::string& path : paths) Modify(path);
  Fence();
  EXPECT_EQ(g_heard.Total(), 0U);
  for (const std::string& path : paths) Register(path);
  for (const std::string& path : paths) Modify(path);
  g_heard.Await(kFiles);
}

}  // namespace
