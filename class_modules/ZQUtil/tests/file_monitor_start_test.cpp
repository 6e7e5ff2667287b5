// The beginning of the file monitors, step by step in one process: nothing starts before there is something to watch,
// and what the system refuses is tried again.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>

#include <cerrno>
#include <thread>

#include "ZQFileMonitor.h"
#include "heard_calls.h"
#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_thread.h"

// The module finds these before the system's own.
static bool g_noInotify = false;
static bool g_noThread = false;
static int g_inotifies = 0;

extern "C" __attribute__((visibility("default"))) int inotify_init1(int flags) noexcept {
  if (g_noInotify) {
    errno = EMFILE;
    return -1;
  }
  ++g_inotifies;
  static const auto next = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "inotify_init1"));
  return next(flags);
}

extern "C" __attribute__((visibility("default"))) uint32_t zq__beginthread(
    zq_ThreadFunction function, void* argument, const zq_ThreadAttributes* attributes, const char* file,
    int line) {
  if (g_noThread) return 0;
  static const auto next = reinterpret_cast<decltype(&zq__beginthread)>(dlsym(RTLD_NEXT, "zq__beginthread"));
  return next(function, argument, attributes, file, line);
}

namespace {

// Never destroyed: the monitors' thread outlives the test.
HeardCalls& g_heard = *new HeardCalls;

void Hear(char const* path) {
  g_heard.Add(path);
}

TEST(FileMonitorStart, StartsWithTheFirstFileThatIsThere) {
  const TempDir folder;
  const std::string path = folder / "file";
  const auto traced = [](const auto& call) {
    const TraceCapture trace;
    call();
    std::string all;
    for (const std::string& text : trace.Texts()) all += text + "\n";
    return all;
  };
  const auto registration = [&] { registerFileMonitor(path.c_str(), Hear); };

  EXPECT_EQ(traced(registration), "FileMonitor: File '" + path + "' not found - ignoring request\n");
  EXPECT_EQ(traced([] { registerFileMonitor(nullptr, Hear); }), "FileMonitor: Malformed register request\n");
  EXPECT_EQ(traced([&] { registerFileMonitor(path.c_str(), nullptr); }),
            "FileMonitor: Malformed register request\n");
  EXPECT_EQ(traced([] { deregisterFileMonitor(nullptr, Hear); }),
            "FileMonitor: Malformed deregister request\n");
  EXPECT_EQ(traced([&] { deregisterFileMonitor(path.c_str(), nullptr); }),
            "FileMonitor: Malformed deregister request\n");
  EXPECT_EQ(traced([&] { deregisterFileMonitor(path.c_str(), Hear); }), "");
  EXPECT_EQ(g_inotifies, 0);

  WriteFile(path, "");
  g_noInotify = true;
  EXPECT_EQ(traced(registration),
            "FileMonitor: Starting File Monitor\n"
            "FileMonitor: failed to init intoify (Too many open files)\n"
            "FileMonitor: failed to start monitoring for '" +
                path + "' (Bad file descriptor)\n");
  g_noInotify = false;
  g_noThread = true;
  EXPECT_EQ(traced(registration),
            "FileMonitor: Starting File Monitor\n"
            "FileMonitor: failed to start monitoring for '" +
                path + "' (Bad file descriptor)\n");
  g_noThread = false;
  EXPECT_EQ(traced(registration),
            "FileMonitor: Starting File Monitor\nFileMonitor: monitoring started for '" + path + "'\n");
  Modify(path);
  g_heard.Await(1);
  EXPECT_FALSE(zq_ThreadAwaitEnd(threadFileMonitor, 0));

  // An empty registry ends neither.
  {
    const TraceCapture trace;
    deregisterFileMonitor(path.c_str(), Hear);
    // The thread hears of the watch's end some time later.
    while (!trace.Has("FileMonitor: ++ watch id not found in map ++")) std::this_thread::yield();
  }
  EXPECT_EQ(traced(registration), "FileMonitor: monitoring started for '" + path + "'\n");
  EXPECT_EQ(g_inotifies, 2) << "one of them had no thread";
  Modify(path);
  g_heard.Await(2);
}

}  // namespace
