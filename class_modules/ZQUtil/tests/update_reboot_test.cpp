// The restart after an update: of the device, of the host alone, and the one that too many retries force.
#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <thread>

#include "ZQSoftwareUpdate.h"
#include "ZQUpdateDownload.h"
#include "ZQUpdateInstall.h"
#include "ZQUtilPersistence.h"
#include "update_fixture.h"
#include "zq_file.h"
#include "zq_trace.h"

namespace {

// The configuration-management library as this device has it.
enum class Manager { kNone, kEmpty, kWhole };
std::atomic<Manager> g_manager = Manager::kWhole;
std::atomic<int32_t> g_suspended = 0;
std::atomic<int> g_loaded = 0;

int32_t AreUpdatesSuspended() {
  return g_suspended;
}

template <typename Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// In front of the platform's: they give out that library, and pass on the others.
void* zq_LoadLibrary(const char* name) {
  if (std::strcmp(name, "libcfgmgr.so") != 0) return Next<decltype(&zq_LoadLibrary)>("zq_LoadLibrary")(name);
  if (g_manager == Manager::kNone) return nullptr;
  ++g_loaded;
  return &g_manager;
}

void* zq_GetProcAddress(void* library, const char* name) {
  if (library != &g_manager) return Next<decltype(&zq_GetProcAddress)>("zq_GetProcAddress")(library, name);
  const bool found = g_manager == Manager::kWhole && std::strcmp(name, "areUpdatesSuspended") == 0;
  return found ? reinterpret_cast<void*>(AreUpdatesSuspended) : nullptr;
}

void zq_FreeLibrary(void* library) {
  if (library != &g_manager) {
    Next<decltype(&zq_FreeLibrary)>("zq_FreeLibrary")(library);
  } else {
    --g_loaded;
  }
}

namespace {

using std::chrono::milliseconds;

class UpdateRebootTest : public UpdateTest {
 protected:
  UpdateRebootTest() {
    g_manager = Manager::kWhole;
    g_suspended = 0;
    g_loaded = 0;
  }

  // RebootDevice on a thread as the library's is one.
  void Reboot() {
    std::thread thread(RebootDevice);
    PassReboot();
    thread.join();
  }
};

constexpr char kAsked[] = "Reboot Device Called\nCall to rebootRequired 1\nReturning 1\n";
constexpr char kReboots[] =
    "ZQUtil done updating database.  Sorel is outta here.\n"
    "ZQUtil Update Done Message\n"
    "ZQUtil issuing a reboot\n"
    "ZQUtil created /tmp/reboot\n"
    "ZQUtil done /tmp/reboot\n";

TEST_F(UpdateRebootTest, AsksTheSystemForAReboot) {
  Start();
  Reboot();
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
  EXPECT_EQ(TakeTraces(), std::string(kAsked) + kReboots);
  EXPECT_EQ(engine.TakeCalls(), "");
}

TEST_F(UpdateRebootTest, TellsItsListenerOnceMore) {
  Start();
  Listen();
  Reboot();
  EXPECT_EQ(engine.TakeCalls(), "<begin>,onInstalling()<end>");
  EXPECT_NE(
      TakeTraces().find("ZQUtil Update Done Message\nZQUtil sending onInstalling\nZQUtil issuing a reboot\n"),
      std::string::npos);
}

TEST_F(UpdateRebootTest, AnythingButNoInTheKeyStoreIsAReboot) {
  Start();
  for (const char* value : {"yes", "n", "nope", " no", "0", "false"}) {
    StoreKey("sys.reboot", value);
    ForgetAwaited();
    Reboot();
    EXPECT_EQ(StoredKey("sys.reboot"), "<none>") << value << ": consumed all the same";
  }
}

TEST_F(UpdateRebootTest, WithoutTheKeyStoreTheDeviceReboots) {
  Start();
  const ClosedKeyStore closed;
  Reboot();
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
}

TEST_F(UpdateRebootTest, WaitsWhileUpdatesAreSuspended) {
  Start();
  g_suspended = 1;
  std::thread thread(RebootDevice);
  for (int i = 0; i < 3; ++i) {
    AwaitModuleSleeper();
    clock.Advance(milliseconds(2));
  }
  AwaitModuleSleeper();
  EXPECT_FALSE(std::filesystem::exists("/tmp/reboot"));
  g_suspended = 0;
  clock.Advance(milliseconds(2));
  PassReboot();
  thread.join();
  constexpr char kWaits[] = "** waiting to reboot - updates are suspended **\n";
  EXPECT_EQ(TakeTraces(), std::string(kAsked) + kWaits + kWaits + kWaits + kWaits + kReboots);
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
  EXPECT_EQ(g_loaded, 0) << "let go";
}

TEST_F(UpdateRebootTest, WithoutConfigurationManagementNothingHoldsTheRebootBack) {
  Start();
  g_suspended = 1;
  g_manager = Manager::kNone;
  Reboot();
  EXPECT_EQ(TakeTraces(), std::string(kAsked) + "Failed to find 'libcfgmgr.so'\n" + kReboots);
  g_manager = Manager::kEmpty;
  ForgetAwaited();
  Reboot();
  EXPECT_EQ(TakeTraces(), std::string(kAsked) + "Failed to find 'areUpdatesSuspended'\n" + kReboots);
  EXPECT_EQ(g_loaded, 0);
}

// The rest ends the process, so each runs in one of its own.
class UpdateRebootDeathTest : public UpdateRebootTest {
 public:
  void SetBehindAListener() {
    ListenForConnectivity();
    PostToQueue(kMsgUpdateServerReached, 0);
    engine.Answer(*util, "setBrightness", {N(42)});
    engine.Answer(*util, "setFirstTime", {S("stored just before")});
  }

 protected:
  UpdateRebootDeathTest() {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    unlink(kTrace);
  }

  // Time goes by until the process ends.
  [[noreturn]] void Live(void (*body)()) {
    zq_TraceRedirect(kTrace, 0);
    Start();
    ZQUtil::my_WriteINIFileString("config", "note", "stored just before", "zqutil.ini");
    std::thread(body).detach();
    for (int i = 0; i < 60000; ++i) {
      clock.Advance(milliseconds(100));
      usleep(1000);
    }
    _exit(99);
  }
  static std::string Trace() { return ReadFile(kTrace); }

  static constexpr char kTrace[] = "/tmp/reboot.trace";
};

TEST_F(UpdateRebootDeathTest, NoInTheKeyStoreRestartsTheHostInPlaceOfTheDevice) {
  for (const char* no : {"no", "NO", "No"}) {
    StoreKey("sys.reboot", no);
    EXPECT_EXIT(
        {
          StoreKey("sys.reboot", no);
          Live(RebootDevice);
        },
        testing::ExitedWithCode(0), "");
    const std::string traces = Trace();
    EXPECT_NE(traces.find("Returning 0\n"), std::string::npos);
    EXPECT_NE(traces.find("ZQUtil Update: not rebooting as sys reboot is set (restarting sorel instead)\n"),
              std::string::npos);
    EXPECT_EQ(traces.find("ZQUtil issuing a reboot"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists("/tmp/reboot"));
    EXPECT_EQ(StoredKey("sys.reboot"), "<none>");
    EXPECT_EQ(StoredSetting("note"), "stored just before") << "what a script stored is not lost";
    unlink("/tmp/reboot.trace");
  }
}

TEST_F(UpdateRebootDeathTest, AfterMoreThanFiveUpdatesAFailureRebootsAndEndsTheHost) {
  EXPECT_EXIT(
      {
        Device("1", "4");
        updateCounter = 6;
        Live([] { DownloadUpdate("gopher://h/app-1.tgz"); });
      },
      testing::ExitedWithCode(9), "");
  const std::string traces = Trace();
  const size_t exceeded = traces.find("Rebooting Device due to update retries exceeded\n");
  ASSERT_NE(exceeded, std::string::npos);
  EXPECT_NE(traces.find("Reboot Device Called\n", exceeded), std::string::npos);
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
  EXPECT_EQ(StoredSetting("note"), "stored just before");
}

TEST_F(UpdateRebootDeathTest, AfterMoreThanFiveUpdatesACompletionRebootsTwiceAndEndsTheHost) {
  EXPECT_EXIT(
      {
        Device("1", "4");
        updateCounter = 6;
        packages.AnswerBody("no package that could be unpacked");
        static const std::string url = Url("app-1.tgz");
        Live([] { DownloadUpdate(url.c_str()); });
      },
      testing::ExitedWithCode(9), "");
  const std::string traces = Trace();
  const size_t first = traces.find("ZQUtil issuing a reboot\n");
  const size_t cleanup = traces.find("Calling Cleanup\n", first);
  const size_t exceeded = traces.find("Rebooting Device due to update retries exceeded\n", cleanup);
  const size_t second = traces.find("ZQUtil issuing a reboot\n", exceeded);
  EXPECT_LT(first, cleanup);
  EXPECT_LT(cleanup, exceeded);
  EXPECT_LT(exceeded, second);
  EXPECT_NE(second, std::string::npos);
}

// The listener that stands in front, in the queue, of what a script sets.
int32_t ListenLong(void*, const char*, uint32_t, zq_Value*, zq_Value*) {
  usleep(300000);
  return 1;
}

TEST_F(UpdateRebootDeathTest, WhatWaitsInTheQueueBehindAListenerIsStoredBeforeTheHostEnds) {
  static UpdateRebootDeathTest* test;
  test = this;
  EXPECT_EXIT(
      {
        engine.Table()[ZQ_SLOT_CALL_METHOD] = reinterpret_cast<uintptr_t>(ListenLong);
        Live([] {
          test->SetBehindAListener();
          ExitHost(3);
        });
      },
      testing::ExitedWithCode(3), "");
  EXPECT_NE(Trace().find("ZQUtil Sending Connectivity Listener Success\n"), std::string::npos);
  EXPECT_EQ(StoredSetting("brightness"), "42");
  EXPECT_EQ(ReadFile("/proc/blctrl"), "42");
  EXPECT_EQ(StoredKey("net.firsttime"), "stored just before");
}

TEST_F(UpdateRebootTest, FiveUpdatesAreNotTooMany) {
  Start();
  Device("1", "4");
  updateCounter = 5;
  DownloadUpdate("gopher://h/app-1.tgz");
  EXPECT_EQ(TakeTraces().find("exceeded"), std::string::npos);
}

}  // namespace
