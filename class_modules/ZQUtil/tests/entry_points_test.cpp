// The seam to the host: entry points, the copied service table, the definition of the class.
#include <gmock/gmock.h>

#include "ZQUtilEntryPoints.h"
#include "ZQUtilMethodTable.h"
#include "module_fixture.h"

namespace {

constexpr char kAllMethods[] =
    "constructor/0 getFirstTime/0 setFirstTime/1 getPhoneVolume/0 setPhoneVolume/1 MutePhone/0 UnmutePhone/0 "
    "getMediaVolume/0 setMediaVolume/1 getMicVolume/0 setMicVolume/1 MuteMic/0 UnmuteMic/0 getBrightness/0 "
    "setBrightness/1 getContrast/0 setContrast/1 getDimMode/0 setDimMode/1 isTablet/0 batteryPct/0 "
    "chargeStatus/0 "
    "getIniSetting/2 setIniSetting/3 deleteIniFile/1 writeFile/2 deleteFile/1 utf8Encode/1 ";

class EntryPointsTest : public ModuleTest {
 protected:
  std::string DefinedMethods() {
    std::string all;
    for (const std::string& name : engine.ClassObject().methodOrder) {
      all += name + "/" + std::to_string(engine.ClassObject().methods[name].second) + " ";
    }
    return all;
  }
};

TEST_F(EntryPointsTest, LoadAndUnloadLogTheirStartAndEndAndNothingElse) {
  Load();
  EXPECT_EQ(engine.TakeLog(), "")
      << "no service table yet when MM_Load runs, and MM_Init logs nothing to the host";
  MM_Load();
  EXPECT_EQ(engine.TakeLog(), "ZQUtil MM_Load start\nZQUtil MM_Load end\n");
  MM_Unload();
  EXPECT_EQ(engine.TakeLog(), "ZQUtil MM_Unload start\nZQUtil MM_Unload end\n");
}

TEST_F(EntryPointsTest, DefinesTheMethodsInTheirOrderWithTheirDeclaredCounts) {
  Load();
  EXPECT_EQ(DefinedMethods(), kAllMethods);
}

TEST_F(EntryPointsTest, TracesItsStartBeforeThereIsATraceInstance) {
  Load();
  EXPECT_EQ(trace.Lines().front().name, "-");
  EXPECT_EQ(trace.Texts().front(), "ZQUtil MM_Init");
}

TEST_F(EntryPointsTest, AnswersZeroWithoutTheApplicationLogLibrary) {
  EXPECT_EQ(Load(), 0);
}

TEST_F(EntryPointsTest, TermWithoutTheApplicationLogLibraryLogsStartAndEndOnly) {
  Load();
  engine.TakeLog();
  EXPECT_EQ(MM_TermWrapper(), 0);
  EXPECT_EQ(engine.TakeLog(), "ZQUtil MM_Term start\nZQUtil MM_Term end\n");
}

TEST_F(EntryPointsTest, AnEmptyTableDefinesNothingAndMethodsReachedDirectlyFail) {
  EXPECT_EQ(Load(0), 0);
  EXPECT_EQ(DefinedMethods(), "");
  Object& object = engine.NewObject();
  zq_Value result = ZQ_VALUE_VOID;
  EXPECT_EQ(ZQUtil_BatteryPct(&object, 0, nullptr, &result), 0);
  EXPECT_EQ(result, ZQ_VALUE_VOID);
}

TEST_F(EntryPointsTest, ANullTableIsAnEmptyOne) {
  EXPECT_EQ(MM_InitWrapper(nullptr, 80), 0);
  EXPECT_EQ(DefinedMethods(), "");
}

TEST_F(EntryPointsTest, ATableOfTenSlotsDefinesTheClassWhoseMethodsAnswerNothing) {
  Load(10 * sizeof(uintptr_t));
  EXPECT_EQ(DefinedMethods(), kAllMethods);
  zq_Value result = ZQ_VALUE_VOID;
  int32_t handled = -1;
  Object& object = engine.Construct(&handled, &result);
  EXPECT_EQ(handled, 1);
  EXPECT_EQ(result, BareEngine::Word(object));
  EXPECT_EQ(object.finalizer, nullptr) << "SetFinalizer is beyond the table";
  EXPECT_FALSE(object.hasPrivate);
  EXPECT_EQ(engine.Answer(object, "isTablet"), "<returned 0>") << "GetPrivate is beyond the table";
  EXPECT_EQ(ZQUtil_finalizer(&object), 1);
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
}

TEST_F(EntryPointsTest, ATableOfSixtySlotsIsCutToFortyOne) {
  for (int slot = ZQ_ENGINE_SLOTS; slot < 60; ++slot) engine.Table()[slot] = 0x5A5A5A50;
  Load(60 * sizeof(uintptr_t));
  EXPECT_EQ(DefinedMethods(), kAllMethods);
  EXPECT_EQ(engine.Answer(New(), "isTablet"), "no");
}

TEST_F(EntryPointsTest, AWordThatBeginsWithinTheTableIsCopiedWhole) {
  // Slot 3, DefineMethod, begins one byte before the end.
  Load(3 * sizeof(uintptr_t) + 1);
  EXPECT_EQ(DefinedMethods(), kAllMethods);
}

TEST_F(EntryPointsTest, AWordThatBeginsAtTheEndIsNot) {
  Load(3 * sizeof(uintptr_t));
  EXPECT_EQ(DefinedMethods(), "");
}

TEST_F(EntryPointsTest, AShorterTableForgetsTheServicesOfALongerOneBefore) {
  Load();
  engine.TakeLog();
  EXPECT_EQ(MM_InitWrapper(engine.Table(), 4 * sizeof(uintptr_t)), 0);
  MM_Load();
  EXPECT_EQ(engine.TakeLog(), "");
}

TEST_F(EntryPointsTest, WithoutDefineMethodTheClassObjectIsKeptAllTheSame) {
  engine.Remove(ZQ_SLOT_DEFINE_METHOD);
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(DefinedMethods(), "");
  // A finished background scan clears the listener on the class object, which only works where it is kept.
  ZQUtil* const singleton = ZQUtil::Instance();
  Object& listener = engine.NewObject();
  singleton->getessidListener = &listener;
  PostToQueue(kMsgBackgroundScan, 0);
  Settle();
  EXPECT_EQ(engine.Show(engine.ClassObject().properties.at("getessidListener")), "<null>");
  ZQUtil::Dereference();
}

TEST_F(EntryPointsTest, AMethodOnAnObjectThatWasNeverConstructedFails) {
  New();
  Object& stranger = engine.NewObject();
  EXPECT_EQ(engine.Answer(stranger, "batteryPct"), "<returned 0>");
}

TEST_F(EntryPointsTest, TheAnswerNoIsMadeWithLengthThree) {
  zq_Value result = ZQ_VALUE_VOID;
  ASSERT_EQ(engine.Call(New(), "isTablet", {}, &result), 1);
  EXPECT_EQ(engine.Show(result), "no");
  EXPECT_EQ(engine.LengthGiven(result), 3U);
}

TEST_F(EntryPointsTest, GetPrivateMustAnswerExactlyOne) {
  engine.Table()[ZQ_SLOT_GET_PRIVATE] =
      reinterpret_cast<uintptr_t>(+[](void*, void**) -> int32_t { return 2; });
  EXPECT_EQ(engine.Answer(New(), "batteryPct"), "<returned 0>");
}

TEST_F(EntryPointsTest, ConstructorAndFinalizerTellTheHost) {
  Load();
  engine.TakeLog();
  Object& object = New();
  EXPECT_EQ(engine.TakeLog(), "ZQUtil Constructor start\nZQUtil Constructor end\n");
  Drop(object);
  EXPECT_EQ(engine.TakeLog(), "ZQUtil Finalizer start\nZQUtil Finalizer end\n");
}

TEST_F(EntryPointsTest, TheConstructorDoesWithoutAResultSlot) {
  Load();
  Object& object = engine.NewObject();
  EXPECT_EQ(ZQUtil_constructor(&object, 0, nullptr, nullptr), 1);
  EXPECT_EQ(engine.Answer(object, "isTablet"), "no");
  BareEngine::Finalize(object);
}

}  // namespace
