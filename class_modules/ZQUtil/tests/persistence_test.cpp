// Deferred persistence: what scripts set reaches files and key store later, whole, in order, and never on
// their thread.
#include <filesystem>
#include <thread>

#include "ZQScreen.h"
#include "ZQUtilPersistence.h"
#include "audio_volume.h"
#include "fault.h"
#include "module_fixture.h"
#include "no_more_threads.h"
#include "nvram.h"
#include "zq_ini.h"
#include "zq_thread.h"

namespace {

namespace fs = std::filesystem;

class PersistenceTest : public ModuleTest {
 protected:
  ZQUtil& Singleton() { return *ZQUtil::m_pInstance; }

  void Start() {
    New();
    Settle();
    ForgetTraces();
    fs::remove("zqutil.ini");
    WriteFile("/proc/blctrl", "before");
  }

  static std::string Mixer() { return ReadFile(MixerFile()); }
  // Somebody at the device turns the volume, which whatever sets the mixer undoes. What the mixer is then.
  static std::string TurnMixer() {
    EXPECT_TRUE(zq_WriteINIFileString("Master Playback Volume", "value", "1,1", MixerFile().c_str(), false));
    return Mixer();
  }

 private:
  static std::string MixerFile() { return OnThisMachine("/hw/mixer.ini"); }
};

TEST_F(PersistenceTest, ABrightnessOf200GoesToFileAndBacklight) {
  Start();
  const std::string mixer = TurnMixer();
  Singleton().screen->setBrightness(200);
  Settle();
  EXPECT_EQ(StoredSetting("brightness"), "200");
  EXPECT_EQ(ReadFile("/proc/blctrl"), "200");
  EXPECT_EQ(StoredSetting("contrast"), "<none>");
  EXPECT_EQ(StoredSetting("phoneVolume"), "<none>");
  EXPECT_EQ(Mixer(), mixer);
}

TEST_F(PersistenceTest, TracesABrightnessWrite) {
  Start();
  ZQUtil::AsyncConfigWrite(kConfigBrightness);
  Settle();
  std::string traces = Traces();
  // From a thread of its own, after the first line.
  const std::string write = "Writing INI FIle Int config, brightness, 255, zqutil.ini\n";
  const size_t at = traces.find(write);
  ASSERT_NE(at, std::string::npos) << traces;
  EXPECT_GT(at, 0U);
  traces.erase(at, write.size());
  EXPECT_EQ(traces,
            "ZQUtil Asynchronous config write (2)\n"
            "getBrightness returning 255\n"
            "ZQUtil opening /proc/blctrl\n"
            "ZqUtil Writing screen brightness\n"
            "getBrightness returning 255\n");
}

TEST_F(PersistenceTest, WithoutABacklightTheSettingIsStoredAllTheSame) {
  Start();
  fs::rename(OnThisMachine("/proc/blctrl"), OnThisMachine("/aside"));
  Singleton().screen->setBrightness(42);
  Settle();
  EXPECT_EQ(StoredSetting("brightness"), "42");
  EXPECT_NE(Traces().find("ZQUtil could not open /proc/blctrl\n"), std::string::npos);
  EXPECT_EQ(Traces().find("ZqUtil Writing screen brightness\n"), std::string::npos);
  fs::rename(OnThisMachine("/aside"), OnThisMachine("/proc/blctrl"));
}

TEST_F(PersistenceTest, AContrastWriteTouchesNothingElse) {
  Start();
  const std::string mixer = TurnMixer();
  Singleton().screen->setContrast(21);
  Settle();
  EXPECT_EQ(ReadFile("zqutil.ini"), "[config]\ncontrast=21\n");
  EXPECT_EQ(ReadFile("/proc/blctrl"), "before");
  EXPECT_EQ(Mixer(), mixer);
}

TEST_F(PersistenceTest, AVolumeWriteStoresAllThreeInTheirOrder) {
  Start();
  Singleton().audioVolume->setMicVolume(7);
  Settle();
  EXPECT_EQ(ReadFile("zqutil.ini"), "[config]\nphoneVolume=75\nmediaVolume=75\nmicVolume=7\n");
  EXPECT_EQ(ReadFile("/proc/blctrl"), "before");
  EXPECT_NE(Traces().find("ZQUtil Asynchronous config write (1)\n"), std::string::npos);
}

TEST_F(PersistenceTest, AnUnknownKindOnlyTraces) {
  Start();
  for (int32_t kind : {4, 0, -1}) ZQUtil::AsyncConfigWrite(kind);
  Settle();
  EXPECT_EQ(Traces(),
            "ZQUtil Asynchronous config write (4)\nZQUtil Asynchronous config write (0)\n"
            "ZQUtil Asynchronous config write (-1)\n");
  EXPECT_EQ(ReadFile("/proc/blctrl"), "before");
  EXPECT_FALSE(fs::exists("zqutil.ini"));
}

TEST_F(PersistenceTest, StringAndIntegerWritesTraceWhatTheyWrite) {
  Start();
  ZQUtil::my_WriteINIFileString("config", "name", "A phone", "app.ini");
  ZQUtil::my_WriteINIFileInt("config", "count", -5, "app.ini");
  Settle();
  EXPECT_EQ(Traces(),
            "Writing INI FIle String config, name, A phone, app.ini\nWriting INI FIle Int config, count, -5, "
            "app.ini\n");
  EXPECT_EQ(ReadFile("app.ini"), "[config]\nname=A phone\ncount=-5\n");
}

TEST_F(PersistenceTest, NullTextsWriteNothing) {
  Start();
  ZQUtil::my_WriteINIFileString(nullptr, "k", "v", "null.ini");
  ZQUtil::my_WriteINIFileString("config", nullptr, "v", "null.ini");
  ZQUtil::my_WriteINIFileString("config", "k", nullptr, "null.ini");
  ZQUtil::my_WriteINIFileString("config", "k", "v", nullptr);
  ZQUtil::my_WriteINIFileInt(nullptr, "k", 1, "null.ini");
  ZQUtil::my_WriteINIFileInt("config", nullptr, 1, "null.ini");
  ZQUtil::my_WriteINIFileInt("config", "k", 1, nullptr);
  ZQUtil::AsyncNVRAMWrite(nullptr, "v");
  ZQUtil::AsyncNVRAMWrite("k", nullptr);
  EXPECT_EQ(threadConfigWrite(nullptr), 1);
  Settle();
  EXPECT_EQ(Traces(), "");
  EXPECT_FALSE(fs::exists("null.ini"));
}

TEST_F(PersistenceTest, TheCallersTextsMayChangeAtOnce) {
  Start();
  std::string key = "key";
  std::string value = "value";
  ZQUtil::my_WriteINIFileString("config", key.c_str(), value.c_str(), "copy.ini");
  ZQUtil::AsyncNVRAMWrite(key.c_str(), value.c_str());
  key.assign(3, 'x');
  value.assign(5, 'x');
  Settle();
  EXPECT_EQ(StoredSetting("key", "copy.ini"), "value");
  EXPECT_EQ(StoredKey("key"), "value");
}

TEST_F(PersistenceTest, TheLastOfManyValuesIsTheOneThatStays) {
  Start();
  for (int i = 0; i <= 200; ++i) ZQUtil::my_WriteINIFileInt("config", "level", i, "order.ini");
  Settle();
  EXPECT_EQ(StoredSetting("level", "order.ini"), "200");
}

TEST_F(PersistenceTest, ManyThreadsLoseNoSetting) {
  Start();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 25; ++i) {
        const std::string key = "key" + std::to_string(t) + "_" + std::to_string(i);
        ZQUtil::my_WriteINIFileInt("config", key.c_str(), i, "many.ini");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  Settle();
  for (int t = 0; t < 4; ++t) {
    for (int i = 0; i < 25; ++i) {
      EXPECT_EQ(StoredSetting("key" + std::to_string(t) + "_" + std::to_string(i), "many.ini"),
                std::to_string(i));
    }
  }
}

TEST_F(PersistenceTest, WritesGoOnWhenTheSystemStartsNoMoreThreads) {
  Start();
  {
    const NoMoreThreads tight;
    ZQUtil::my_WriteINIFileInt("config", "tight", 1, "tight.ini");
  }
  EXPECT_EQ(StoredSetting("tight", "tight.ini"), "1") << "written by the caller itself";
}

TEST_F(PersistenceTest, KeysAreStoredInTheOrderOfTheirPosts) {
  Start();
  for (int i = 0; i <= 20; ++i) ZQUtil::AsyncNVRAMWrite("order", std::to_string(i).c_str());
  Settle();
  EXPECT_EQ(StoredKey("order"), "20");
}

TEST_F(PersistenceTest, AKeyIsStoredByTheQueue) {
  Start();
  ZQUtil::AsyncNVRAMWrite("net.firsttime", "Yes");
  Settle();
  EXPECT_EQ(StoredKey("net.firsttime"), "Yes");
  EXPECT_EQ(Traces(), "ZQUtil Asynchronous NVRAM Write\n");
}

TEST_F(PersistenceTest, AClosedKeyStoreLosesTheWriteAndTheQueueGoesOn) {
  Start();
  {
    const ClosedKeyStore closed;
    ZQUtil::AsyncNVRAMWrite("net.firsttime", "Yes");
    Settle();
    EXPECT_NE(Traces().find("ZQUtil Asynchronous NVRAM Write\n"), std::string::npos);
  }
  EXPECT_EQ(StoredKey("net.firsttime"), "<none>");
  ZQUtil::AsyncNVRAMWrite("net.firsttime", "No");
  Settle();
  EXPECT_EQ(StoredKey("net.firsttime"), "No");
}

TEST_F(PersistenceTest, PassesKeyStoreWritesOnUnchanged) {
  New();
  const int store = nvram_open(0, 0);
  ASSERT_NE(store, -1);
  EXPECT_EQ(my_nvram_write_key(store, nullptr, "a", "b"), 0);
  EXPECT_EQ(my_nvram_write_key(store, nullptr, "=", "b"), -1);
  nvram_close(store);
  EXPECT_EQ(StoredKey("a"), "b");
}

TEST_F(PersistenceTest, TheModulesEndWaitsForWritesUnderWay) {
  Start();
  const Fault slow(OnThisMachine(""), "fsync:all:stall:5");
  for (int i = 0; i < 20; ++i) ZQUtil::my_WriteINIFileInt("config", "end", i, "end.ini");
  Unload();
  EXPECT_EQ(StoredSetting("end", "end.ini"), "19");
}

}  // namespace
