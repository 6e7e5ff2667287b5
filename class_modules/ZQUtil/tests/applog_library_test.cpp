// The application-log library: installed, another one, one that is something else, and none.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "ZQUtilEntryPoints.h"
#include "library_choice.h"
#include "module_fixture.h"

extern "C" {
extern void* stubRegistered;
extern int32_t stubUnregistered;
extern std::string stubRecords;
int32_t ZQLogApplicationActivity(const char* application, const char* action, const char* detail);
}

namespace {

class ApplogLibraryTest : public ModuleTest {
 protected:
  ApplogLibraryTest() {
    ChooseAppLogLibrary(AppLogLibrary::kStub);
    stubRegistered = nullptr;
    stubUnregistered = 0;
    stubRecords.clear();
  }
};

TEST_F(ApplogLibraryTest, TheClassIsRegisteredAndTheAnswerIsTheModules) {
  EXPECT_EQ(Load(), 4711);
  EXPECT_EQ(stubRegistered, &engine.ClassObject());
}

TEST_F(ApplogLibraryTest, WithoutDefineMethodTheLibraryIsLoadedAllTheSame) {
  engine.Remove(ZQ_SLOT_DEFINE_METHOD);
  EXPECT_EQ(Load(), 4711);
}

TEST_F(ApplogLibraryTest, TheModulesEndUnregistersOnce) {
  Load();
  MM_TermWrapper();
  EXPECT_EQ(stubUnregistered, 1);
  MM_TermWrapper();
  EXPECT_EQ(stubUnregistered, 1) << "the library was let go";
}

TEST_F(ApplogLibraryTest, ASingletonKeepsTheLibrarysEntryPoint) {
  New();
  EXPECT_EQ(ZQUtil::m_pInstance->appLogActivity, &ZQLogApplicationActivity);
}

TEST_F(ApplogLibraryTest, ASingletonBuiltAfterTheModulesEndHasNone) {
  Load();
  MM_TermWrapper();
  New();
  EXPECT_EQ(ZQUtil::m_pInstance->appLogActivity, nullptr);
}

class AppLogTest : public ApplogLibraryTest {
 protected:
  void Start() {
    util = &New();
    Settle();
    ForgetTraces();
  }
  // The call's return value and the records it made.
  std::string Log(const std::vector<zq_Value>& arguments) {
    stubRecords.clear();
    return std::to_string(engine.Call(*util, "appLog", arguments, nullptr)) + " " + stubRecords;
  }

  Object* util = nullptr;
};

constexpr char kCalled[] = "ZQUtil GUI Call to AppLog\n";

TEST_F(AppLogTest, ARecordGoesToTheLibrary) {
  Start();
  EXPECT_EQ(Log({S("Radio"), S("play"), S("Station 5")}), "1 Radio|play|Station 5\n");
  EXPECT_EQ(Traces(), std::string(kCalled) +
                          "ZQUtil Logging Application Message App: Radio, Action: play, Detail: Station 5\n");
}

TEST_F(AppLogTest, WithoutADetailTheLibraryGetsNoneAndTheTraceSaysSo) {
  Start();
  const std::string traced =
      std::string(kCalled) + "ZQUtil Logging Application Message App: Radio, Action: play, Detail: (NULL)\n";
  for (const std::vector<zq_Value>& arguments : {std::vector<zq_Value>{S("Radio"), S("play")},
                                                 {S("Radio"), S("play"), ZQ_VALUE_VOID},
                                                 {S("Radio"), S("play"), ZQ_VALUE_NULL}}) {
    EXPECT_EQ(Log(arguments), "1 Radio|play|<null>\n");
    EXPECT_EQ(Traces(), traced);
    ForgetTraces();
  }
}

TEST_F(AppLogTest, FewerThanTwoArgumentsLogNothing) {
  Start();
  EXPECT_EQ(Log({}), "1 ");
  EXPECT_EQ(Log({S("Radio")}), "1 ");
  EXPECT_EQ(Log({S("Radio"), ZQ_VALUE_VOID}), "1 ");
  EXPECT_EQ(Log({ZQ_VALUE_NULL, S("play"), S("detail")}), "1 ");
  EXPECT_EQ(Traces(), std::string(kCalled) + kCalled + kCalled + kCalled);
}

TEST_F(AppLogTest, NumbersAreLoggedAsTheirText) {
  Start();
  EXPECT_EQ(Log({N(1), N(2), N(3)}), "1 1|2|3\n");
}

TEST_F(AppLogTest, AHostThatConvertsNothingLogsNothing) {
  engine.Remove(ZQ_SLOT_VALUE_TO_STRING);
  Start();
  EXPECT_EQ(Log({S("Radio"), S("play")}), "1 ");
}

TEST_F(AppLogTest, AValueThatCannotBeTextLogsNothingOrNoDetail) {
  static zq_Value unconvertible;
  engine.Table()[ZQ_SLOT_VALUE_TO_STRING] = reinterpret_cast<uintptr_t>(
      +[](zq_Value value, uint32_t*) -> const char* { return value == unconvertible ? nullptr : "text"; });
  Start();
  unconvertible = S("x");
  EXPECT_EQ(Log({unconvertible, S("play")}), "1 ");
  EXPECT_EQ(Log({S("Radio"), unconvertible}), "1 ");
  EXPECT_EQ(Log({S("Radio"), S("play"), unconvertible}), "1 text|text|<null>\n");
}

TEST_F(AppLogTest, AfterTheModulesEndLoggingIsOff) {
  Load();
  MM_TermWrapper();
  Start();
  EXPECT_EQ(Log({S("Radio"), S("play")}), "1 ");
  EXPECT_EQ(Traces(), std::string(kCalled) + "ZQUtil Application Logging Disabled\n");
}

class NoAppLogTest : public AppLogTest {
 protected:
  NoAppLogTest() { ChooseAppLogLibrary(AppLogLibrary::kMissing); }
};

TEST_F(NoAppLogTest, TheModuleAnswersZeroAndItsEndLogsStartAndEndOnly) {
  EXPECT_EQ(Load(), 0);
  engine.TakeLog();
  EXPECT_EQ(MM_TermWrapper(), 0);
  EXPECT_EQ(engine.TakeLog(), "ZQUtil MM_Term start\nZQUtil MM_Term end\n");
}

TEST_F(NoAppLogTest, NothingIsTracedAsAFailure) {
  Load();
  MM_TermWrapper();
  EXPECT_FALSE(trace.Lines().empty());
  for (const TraceLine& line : trace.Lines()) EXPECT_EQ(line.level, 10000) << line.text;
}

TEST_F(NoAppLogTest, LoggingIsOff) {
  Start();
  EXPECT_EQ(ZQUtil::m_pInstance->appLogActivity, nullptr);
  EXPECT_EQ(Log({S("Radio"), S("play")}), "1 ");
  EXPECT_EQ(Traces(), std::string(kCalled) + "ZQUtil Application Logging Disabled\n");
}

class StrangeAppLogTest : public AppLogTest {
 protected:
  StrangeAppLogTest() { ChooseAppLogLibrary(AppLogLibrary::kWithoutSymbols); }

  static bool IsLoaded() {
    void* const library = dlopen(OTHER_LIBRARY, RTLD_LAZY | RTLD_NOLOAD);
    if (library != nullptr) dlclose(library);
    return library != nullptr;
  }
};

TEST_F(StrangeAppLogTest, ALibraryWithoutTheEntryPointsIsLoadedAndLetGo) {
  EXPECT_EQ(Load(), 0);
  EXPECT_TRUE(IsLoaded());
  engine.TakeLog();
  EXPECT_EQ(MM_TermWrapper(), 0);
  EXPECT_FALSE(IsLoaded());
  EXPECT_EQ(engine.TakeLog(), "ZQUtil MM_Term start\nZQUtil MM_Term end\n");
}

TEST_F(StrangeAppLogTest, LoggingIsOff) {
  Start();
  EXPECT_TRUE(IsLoaded());
  EXPECT_EQ(ZQUtil::m_pInstance->appLogActivity, nullptr);
  EXPECT_EQ(Log({S("Radio"), S("play")}), "1 ");
  EXPECT_EQ(Traces(), std::string(kCalled) + "ZQUtil Application Logging Disabled\n");
}

class PlatformsAppLogTest : public AppLogTest {
 protected:
  PlatformsAppLogTest() {
    ChooseAppLogLibrary(AppLogLibrary::kPlatforms);
    std::filesystem::remove("zqapplog.log");
  }
  ~PlatformsAppLogTest() override { std::filesystem::remove("zqapplog.log"); }
};

TEST_F(PlatformsAppLogTest, RegistersWithoutAFailure) {
  EXPECT_EQ(Load(), 0);
  New();
  EXPECT_NE(ZQUtil::m_pInstance->appLogActivity, nullptr);
}

TEST_F(PlatformsAppLogTest, RecordsAreInItsFileWhenTheModuleEnds) {
  Start();
  EXPECT_EQ(Log({S("Radio"), S("play"), S("Station 5")}), "1 ");
  EXPECT_EQ(Log({S("Radio"), S("stop")}), "1 ");
  Unload();
  EXPECT_EQ(ReadFile("zqapplog.log"),
            "2026-11-21T09:00:00Z\tRadio\tplay\tStation 5\n2026-11-21T09:00:00Z\tRadio\tstop\t-\n");
}

}  // namespace
