// The singleton's life: built by the first script object, shared by all, gone with the last.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <thread>

#include "ZQDateTime.h"
#include "ZQNetwork.h"
#include "ZQScreen.h"
#include "audio_volume.h"
#include "fault.h"
#include "module_fixture.h"
#include "watched_objects.h"
#include "zq_file.h"
#include "zq_timer.h"

namespace {

class LifecycleTest : public ModuleTest {
 public:
  // For listeners, which are plain functions.
  using ModuleTest::engine;
  using ModuleTest::trace;

 protected:
  // The light-sensor thread has begun, and traces nothing more before time goes by.
  void AwaitLightSensor() { clock.AwaitSleepers(1); }
  // Whether the update timer's expiry starts no check.
  bool UpdateChecksHeldBack() {
    ForgetTraces();
    PostToQueue(ZQ_MSG_TIMER, 0, kTimerSoftwareUpdate);
    Settle();
    return Traces().find("ZQUtil Software Not checking for updates : pending flag is set\n") !=
           std::string::npos;
  }
};

TEST_F(LifecycleTest, TwoObjectsShareOneSingleton) {
  Object& first = New();
  ZQUtil* const singleton = ZQUtil::m_pInstance;
  ASSERT_NE(singleton, nullptr);
  EXPECT_TRUE(trace.Has("Creating ZQUtil Instance, count is 1"));
  Settle();
  ForgetTraces();
  Object& second = New();
  EXPECT_EQ(Traces(), "Creating ZQUtil Instance, count is 2\n") << "the second object creates nothing";
  EXPECT_EQ(second.attached, first.attached);
  EXPECT_EQ(ZQUtil::m_pInstance, singleton);

  Drop(first);
  EXPECT_TRUE(trace.Has("Destroying ZQUtil Instance, count is 1"));
  EXPECT_EQ(ZQUtil::m_pInstance, singleton);
  EXPECT_EQ(engine.Answer(second, "isTablet"), "no");
  Drop(second);
  EXPECT_TRUE(trace.Has("Destroying ZQUtil Instance, count is 0"));
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
}

TEST_F(LifecycleTest, TracesItsConstructionInOrder) {
  std::filesystem::remove_all("/media");
  New();
  Settle();
  // What the queue thread and the writers trace comes in between, at any place.
  std::string mine;
  for (const std::string& text : trace.Texts()) {
    for (const char* expected :
         {"ZQUtil MM_Init", "ZQUtil Trace Instance Init", "ZQUtil removing http proxy info",
          "ZQUtil checking for hardware type", "ZQUtil harware type is 0",
          "ZQUtil Audio initialized to 75 75 50", "ZQUtil Setting Brightness to 255",
          "ZQUtil Setting Contrast to 17", "ZQUtil Created All Objects", "Volume Info Failed",
          "I do not think I am running on a tablet", "Creating ZQUtil Instance, count is 1"}) {
      if (text == expected) mine += text + "\n";
    }
  }
  EXPECT_EQ(
      mine,
      "ZQUtil MM_Init\nZQUtil Trace Instance Init\nZQUtil removing http proxy info\n"
      "ZQUtil checking for hardware type\nZQUtil harware type is 0\nZQUtil Audio initialized to 75 75 50\n"
      "ZQUtil Setting Brightness to 255\nZQUtil Setting Contrast to 17\nZQUtil Created All Objects\n"
      "Volume Info Failed\nI do not think I am running on a tablet\nCreating ZQUtil Instance, count is 1\n");
  std::filesystem::create_directory("/media");
}

// As the trace has them: kilobytes times 1024 in 32 bits, with a sign. Others use the volume meanwhile, so they are near.
void ExpectBytesNear(int64_t shown, uint32_t kilobytes) {
  EXPECT_TRUE(shown >= INT32_MIN && shown <= INT32_MAX) << shown;
  const auto bytes = static_cast<uint32_t>(shown);
  EXPECT_EQ(bytes % 1024, 0U) << shown;
  constexpr int64_t kNear = 1 << 30;
  EXPECT_LT(std::abs(static_cast<int64_t>(static_cast<int32_t>(bytes - kilobytes * 1024U))), kNear) << shown;
}

TEST_F(LifecycleTest, TracesTheVolumesRoomInBytesOf32Bits) {
  uint32_t freeKb = 0;
  uint32_t availableKb = 0;
  ASSERT_TRUE(zq_GetVolumeInfo("/media", &freeKb, &availableKb));
  Drop(New());
  const std::string all = Traces();
  std::smatch shown;
  ASSERT_TRUE(std::regex_search(
      all, shown, std::regex("\\nVolume Info: (-?[0-9]+) bytes free, (-?[0-9]+) bytes available\\n")))
      << all;
  ExpectBytesNear(std::stoll(shown[1]), freeKb);
  ExpectBytesNear(std::stoll(shown[2]), availableKb);
}

TEST_F(LifecycleTest, WhatOneSingletonSetTheNextOneFinds) {
  Object& first = New();
  Settle();
  {
    const Fault slow(OnThisMachine(""), "fsync:all:stall:100");
    engine.Answer(first, "setBrightness", {N(50)});
    engine.Answer(first, "setMicVolume", {N(7)});
    engine.Answer(first, "setContrast", {N(9)});
    Drop(first);
    Object& second = New();
    EXPECT_EQ(engine.Answer(second, "getBrightness"), "50");
    EXPECT_EQ(engine.Answer(second, "getMicVolume"), "7");
    EXPECT_EQ(engine.Answer(second, "getContrast"), "9");
    Settle();
  }
  EXPECT_EQ(StoredSetting("brightness"), "50");
  EXPECT_EQ(ReadFile("/proc/blctrl"), "50");
}

TEST_F(LifecycleTest, TheQueueTakesBrightnessFirstAndThenTheVolumes) {
  New();
  Settle();
  const std::string all = Traces();
  EXPECT_LT(all.find("ZQUtil Asynchronous config write (2)\n"),
            all.find("ZQUtil Asynchronous config write (1)\n"));
  EXPECT_NE(all.find("ZQUtil Asynchronous config write (1)\n"), std::string::npos);
}

TEST_F(LifecycleTest, AFreshSingletonStartsWithEmptyHands) {
  for (int life = 0; life < 2; ++life) {
    Object& object = New();
    ZQUtil& singleton = *ZQUtil::m_pInstance;
    EXPECT_EQ(singleton.aboutListener, nullptr);
    EXPECT_NE(singleton.appLogActivity, nullptr) << "the platform has the library";
    EXPECT_EQ(singleton.connectivityListener, nullptr);
    EXPECT_FALSE(singleton.connectivityReported);
    EXPECT_EQ(singleton.getessidListener, nullptr);
    EXPECT_FALSE(singleton.newInterfaces);
    EXPECT_EQ(singleton.interfaceWaits, 0);
    singleton.aboutListener = singleton.connectivityListener = singleton.getessidListener = &object;
    singleton.connectivityReported = true;
    singleton.newInterfaces = true;
    singleton.interfaceWaits = 5;
    Drop(object);
  }
}

TEST_F(LifecycleTest, LetsItsPartsGoInTheOrderInWhichItMadeThem) {
  Object& object = New();
  Settle();
  const ZQUtil& singleton = *ZQUtil::m_pInstance;
  const WatchedObjects parts({{"dateTime", singleton.dateTime},
                              {"screen", singleton.screen},
                              {"audioVolume", singleton.audioVolume},
                              {"network", singleton.network},
                              {"singleton", &singleton}});
  Drop(object);
  EXPECT_EQ(parts.Gone(), "network audioVolume screen dateTime singleton ");
}

TEST_F(LifecycleTest, EndsWithoutTheParts) {
  Object& object = New();
  Settle();
  AwaitLightSensor();
  ZQUtil& singleton = *ZQUtil::m_pInstance;
  delete std::exchange(singleton.network, nullptr);
  delete std::exchange(singleton.audioVolume, nullptr);
  delete std::exchange(singleton.screen, nullptr);
  delete std::exchange(singleton.dateTime, nullptr);
  Drop(object);
  EXPECT_EQ(trace.Texts().back(), "ZQUtil Destructor End");
}

TEST_F(LifecycleTest, OneDereferenceTooManyDoesNoHarm) {
  Drop(New());
  ZQUtil::Dereference();
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  ZQUtil::Instance();
  EXPECT_NE(ZQUtil::m_pInstance, nullptr) << "built, though the count is 0";
  ZQUtil::Dereference();
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  ZQUtil::Instance();  // and the count is as it was for the tests that follow
  ZQUtil::Instance();
  ZQUtil::Dereference();
}

// Listeners' scripts on threads of the module, and the script's own.
TEST_F(LifecycleTest, ThreadsThatConstructAtOnceShareOneSingleton) {
  Object& first = New();
  Settle();
  std::vector<ZQUtil*> shared(4);
  {
    // The construction waits for the write that is under way: the other threads come meanwhile.
    const Fault slow(OnThisMachine(""), "fsync:all:stall:100");
    engine.Answer(first, "setContrast", {N(9)});
    Drop(first);
    ForgetTraces();
    std::vector<std::thread> threads;
    for (ZQUtil*& mine : shared) threads.emplace_back([&mine] { mine = ZQUtil::Instance(); });
    for (std::thread& thread : threads) thread.join();
    Settle();
  }
  EXPECT_NE(ZQUtil::m_pInstance, nullptr);
  EXPECT_EQ(shared, std::vector<ZQUtil*>(4, ZQUtil::m_pInstance));
  const std::string all = Traces();
  const size_t created = all.find("ZQUtil Created All Objects\n");
  EXPECT_NE(created, std::string::npos);
  EXPECT_EQ(all.find("ZQUtil Created All Objects\n", created + 1), std::string::npos) << all;
  for (size_t i = 0; i < shared.size(); ++i) ZQUtil::Dereference();
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
}

// A listener's script that runs on the queue thread while the last object goes.
TEST_F(LifecycleTest, AnObjectConstructedWhileTheSingletonGoesIsRefusedAndHarmless) {
  static LifecycleTest* test;
  static std::atomic<int32_t> constructed;
  static std::atomic<bool> listening;
  test = this;
  constructed = -1;
  listening = false;
  engine.Table()[ZQ_SLOT_CALL_METHOD] =
      reinterpret_cast<uintptr_t>(+[](void*, const char*, uint32_t, zq_Value*, zq_Value*) -> int32_t {
        listening = true;
        while (!test->trace.Has("ZQUtil Destructor Begin")) usleep(1000);
        int32_t handled = 0;
        Object& late = test->engine.Construct(&handled);
        BareEngine::Finalize(late);
        constructed = handled;
        return 1;
      });
  Object& object = New();
  ZQUtil::m_pInstance->connectivityListener = &engine.NewObject();
  PostToQueue(kMsgUpdateServerReached, 0);
  while (!listening) usleep(1000);
  Drop(object);
  EXPECT_EQ(constructed, 0);
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  EXPECT_EQ(engine.Answer(New(), "isTablet"), "no") << "and the module begins again";
}

TEST_F(LifecycleTest, TracesItsEnd) {
  Object& object = New();
  Settle();
  ForgetTraces();
  Drop(object);
  EXPECT_EQ(Traces(),
            "Destroying ZQUtil Instance, count is 0\nZQUtil Destructor Begin\nZQUtil Destructor End\n");
}

TEST_F(LifecycleTest, TracesUnderTheNameZqutilWhileItLives) {
  Object& object = New();
  Settle();
  AwaitLightSensor();
  ForgetTraces();
  EXPECT_EQ(trace.Lines().back().name, "zqutil");
  EXPECT_EQ(trace.Lines().back().level, 10000);
  Drop(object);
  EXPECT_EQ(trace.Lines().back().text, "ZQUtil Destructor End");
  EXPECT_EQ(trace.Lines().back().name, "zqutil");
  ZQUtil::GetIntValueFromFileContents(nullptr);
  EXPECT_EQ(trace.Lines().back().name, "-");
}

TEST_F(LifecycleTest, TakesItsSettingsFromTheFile) {
  WriteFile("zqutil.ini",
            "[config]\nbrightness=100\nmediaVolume=30\nphoneVolume=20\nmicVolume=10\nupdateTime=60000\n");
  New();
  EXPECT_TRUE(trace.Has("ZQUtil Setting Brightness to 100"));
  EXPECT_TRUE(trace.Has("ZQUtil Setting Contrast to 17"));
  EXPECT_TRUE(trace.Has("ZQUtil Audio initialized to 30 20 10"));
  EXPECT_EQ(ZQUtil::m_pInstance->screen->getBrightness(), 100);
  EXPECT_EQ(ZQUtil::m_pInstance->screen->getContrast(), 17);
  EXPECT_EQ(ZQUtil::m_pInstance->audioVolume->getPhoneVolume(), 30)
      << "the media setting is the one that counts";
  EXPECT_EQ(ZQUtil::softwareUpdateCheckTime, 60000);
}

TEST_F(LifecycleTest, TakesTheDefaultsWithoutAFile) {
  New();
  EXPECT_EQ(ZQUtil::m_pInstance->screen->getBrightness(), 255);
  EXPECT_EQ(ZQUtil::m_pInstance->audioVolume->getMediaVolume(), 75);
  EXPECT_EQ(ZQUtil::m_pInstance->audioVolume->getMicVolume(), 50);
  EXPECT_EQ(ZQUtil::softwareUpdateCheckTime, 1800000);
}

TEST_F(LifecycleTest, ReadsTheSettingsAgainForANewSingleton) {
  Object& first = New();
  Settle();
  Drop(first);
  Settle();
  WriteFile("zqutil.ini", "[config]\ncontrast=25\nupdateTime=1000\n");
  New();
  EXPECT_EQ(ZQUtil::m_pInstance->screen->getContrast(), 25);
  EXPECT_EQ(ZQUtil::softwareUpdateCheckTime, 1000);
}

TEST_F(LifecycleTest, TheDeviceManagementLibraryHoldsUpdateChecksBackAtEveryConstruction) {
  const char* const library = "/brimvale/sorel/libzqdms.so";
  WriteFile(library, "");
  Object& first = New();
  EXPECT_TRUE(UpdateChecksHeldBack());
  Drop(first);
  std::filesystem::remove(library);
  Object& second = New();
  EXPECT_FALSE(UpdateChecksHeldBack());
  Drop(second);
  WriteFile(library, "");
  New();
  EXPECT_TRUE(UpdateChecksHeldBack());
  std::filesystem::remove(library);
}

TEST_F(LifecycleTest, SavesBrightnessAndVolumesOnceItRuns) {
  New();
  Settle();
  EXPECT_EQ(StoredSetting("brightness"), "255");
  EXPECT_EQ(StoredSetting("phoneVolume"), "75");
  EXPECT_EQ(StoredSetting("mediaVolume"), "75");
  EXPECT_EQ(StoredSetting("micVolume"), "50");
  EXPECT_EQ(StoredSetting("contrast"), "<none>");
  EXPECT_EQ(ReadFile("/proc/blctrl"), "255");
}

TEST_F(LifecycleTest, AVardo2IsOneWithAHardwareTypeAbove8046) {
  StoreKey("hwinfo.type", "8046");
  Object& first = New();
  EXPECT_FALSE(trace.Has("This is a Vardo2"));
  Drop(first);
  StoreKey("hwinfo.type", "8047");
  New();
  EXPECT_TRUE(trace.Has("ZQUtil harware type is 8047"));
  EXPECT_TRUE(trace.Has("This is a Vardo2"));
}

TEST_F(LifecycleTest, LivesWithoutAKeyStore) {
  const ClosedKeyStore closed;
  EXPECT_EQ(engine.Answer(New(), "isTablet"), "no");
  EXPECT_TRUE(trace.Has("ZQUtil could not open nvram"));
}

TEST_F(LifecycleTest, AThousandObjectsMadeAndDroppedLeaveNothing) {
  Object& keeper = New();
  std::vector<Object*> objects;
  for (int i = 0; i < 1000; ++i) objects.push_back(&New());
  EXPECT_TRUE(trace.Has("Creating ZQUtil Instance, count is 1001"));
  for (Object* object : objects) Drop(*object);
  EXPECT_NE(ZQUtil::m_pInstance, nullptr);
  Drop(keeper);
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
}

TEST_F(LifecycleTest, ConstructsAndEndsAHundredTimesWithoutLosingAWrite) {
  for (int i = 1; i <= 100; ++i) {
    Object& object = New();
    engine.Answer(object, "setBrightness", {N(i % 100)});
    engine.Answer(object, "setFirstTime", {S("round " + std::to_string(i))});
    Drop(object);  // while posts and writers are under way
    ASSERT_EQ(ReadFile("/proc/blctrl"), std::to_string(i % 100)) << trace.Raw();
    ASSERT_EQ(StoredKey("net.firsttime"), "round " + std::to_string(i));
  }
  Unload();
  EXPECT_EQ(StoredSetting("brightness"), "0");
  int ends = 0;
  for (const TraceLine& line : trace.Lines()) {
    if (line.text != "ZQUtil Destructor End") continue;
    ++ends;
    ASSERT_EQ(line.name, "zqutil") << "each life gave its trace instance back";
  }
  EXPECT_EQ(ends, 100);
}

TEST_F(LifecycleTest, ItsQueueRefusesPostsAndTimersAfterItsEnd) {
  Object& object = New();
  const uint32_t queue = ZQUtil::m_pInstance->Handle();
  Drop(object);
  Settle();
  EXPECT_EQ(zq_TimerSet(queue, 1, 1, 0, 0, 0, "late", false), 0);
  ForgetTraces();
  ZQUtil::AsyncNVRAMWrite("net.firsttime", "late");
  ZQUtil::AsyncConfigWrite(2);
  EXPECT_EQ(Traces(), "");
  EXPECT_EQ(StoredKey("net.firsttime"), "<none>");
}

}  // namespace
