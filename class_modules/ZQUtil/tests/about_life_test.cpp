// The end of the module while the about dialog's thread is at its sources.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <semaphore>
#include <thread>

#include "SingletonHold.h"
#include "ZQUtilAbout.h"
#include "module_fixture.h"
#include "nvram.h"
#include "zq_thread.h"

// In front of the key store's own: a store that keeps a thread waiting, when the test says so.
static std::atomic<bool> g_storeIsSlow = false;
static std::binary_semaphore g_atStore(0);
static std::binary_semaphore g_fromStore(0);
extern "C" __attribute__((visibility("default"))) int nvram_open(int mode, int flags) {
  if (g_storeIsSlow && gettid() != getpid()) {
    g_atStore.release();
    g_fromStore.acquire();
  }
  static const auto next = reinterpret_cast<decltype(&nvram_open)>(dlsym(RTLD_NEXT, "nvram_open"));
  return next(mode, flags);
}

namespace {

class AboutLifeTest : public ModuleTest {};

TEST_F(AboutLifeTest, AModuleThatEndsWhileTheThreadGathersWaitsForIt) {
  Object& util = New();
  Settle();
  engine.TakeCalls();
  void* const singleton = ZQUtil::m_pInstance;
  g_storeIsSlow = true;
  engine.Answer(util, "registerAboutListener", {BareEngine::Word(engine.NewObject())});
  g_atStore.acquire();  // it has asked the network for its address
  g_storeIsSlow = false;
  std::thread later([singleton] {
    // Until the singleton's end waits for the threads that hold it, and gives it to no other.
    while (SingletonHold(singleton)) std::this_thread::yield();
    g_fromStore.release();
  });
  Drop(util);
  later.join();
  ASSERT_TRUE(zq_ThreadAwaitEnd(threadAboutDialog, 60000));
  const std::vector<std::string> texts = trace.Texts();
  const auto place = [&](const std::string& text) {
    return std::ranges::find_if(texts, [&](const std::string& line) { return line.starts_with(text); });
  };
  EXPECT_LT(place("ZQUtil Destructor Begin"), place("ZQUtil returning TZDesc"));
  EXPECT_LT(place("ZQUtil returning TZDesc"), place("ZQUtil Destructor End"));
  EXPECT_EQ(engine.TakeCalls(), "<begin><end>") << "the listener went with the singleton";
}

}  // namespace
