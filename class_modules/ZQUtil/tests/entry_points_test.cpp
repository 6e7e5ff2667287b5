// The seam to the host: entry points, the copied service table, the definition of the class.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "ZQUtilEntryPoints.h"
#include "ZQUtilMethodTable.h"
#include "module_fixture.h"

namespace {

constexpr char kAllMethods[] =
    "constructor/0 GetVersion/0 getESSIDList/0 getCachedESSIDList/0 backgroundGetESSIDList/1 getESSID/0 "
    "getConfiguredESSID/0 getConfiguredESSIDListed/0 getIP/0 getMACAddr/0 getSubnetMask/0 "
    "getPrimaryDNS/0 getSecondaryDNS/0 getGateway/0 getProxy/0 getNetworkType/0 getDHCPEnabled/0 "
    "getProxyEnabled/0 getSignalStrength/0 setWiredNetworkDHCP/0 setWiredNetworkStatic/5 "
    "setWirelessNetworkDHCP/7 setWirelessNetworkStatic/12 getWirelessSecurity/0 setProxy/1 "
    "setProxyEnabled/1 registerConnectivityListener/1 checkConnectivity/1 getFirstTime/0 setFirstTime/1 "
    "getPhoneVolume/0 setPhoneVolume/1 MutePhone/0 UnmutePhone/0 getMediaVolume/0 setMediaVolume/1 "
    "getMicVolume/0 setMicVolume/1 MuteMic/0 UnmuteMic/0 getBrightness/0 setBrightness/1 getContrast/0 "
    "setContrast/1 getDimMode/0 setDimMode/1 screenStandby/0 getTZList/0 getNTPEnabled/0 setNTPEnabled/1 "
    "getPrimaryNTPServer/0 setPrimaryNTPServer/1 getSecondaryNTPServer/0 setSecondaryNTPServer/1 "
    "setTime/1 setTZ/1 getTZ/0 getMilitaryTimeEnabled/0 setMilitaryTimeEnabled/1 appLog/3 isTablet/0 "
    "batteryPct/0 chargeStatus/0 GetUpdateList/0 beginUpdate/1 registerUpdateListener/1 factoryReset/0 "
    "registerAboutListener/1 getIniSetting/2 setIniSetting/3 deleteIniFile/1 writeFile/2 deleteFile/1 "
    "utf8Encode/1 ";

// Each script name with the symbol of the function that answers it.
constexpr std::pair<const char*, const char*> kAllWrappers[] = {
    {"constructor", "ZQUtil_constructor"},
    {"GetVersion", "ZQUtil_GetVersion"},
    {"getESSIDList", "ZQUtil_GetESSIDList"},
    {"getCachedESSIDList", "ZQUtil_GetCachedESSIDList"},
    {"backgroundGetESSIDList", "ZQUtil_BackgroundGetESSIDList"},
    {"getESSID", "ZQUtil_GetESSID"},
    {"getConfiguredESSID", "ZQUtil_GetConfiguredESSID"},
    {"getConfiguredESSIDListed", "ZQUtil_GetConfiguredESSIDListed"},
    {"getIP", "ZQUtil_GetIP"},
    {"getMACAddr", "ZQUtil_GetMACAddr"},
    {"getSubnetMask", "ZQUtil_GetSubnetMask"},
    {"getPrimaryDNS", "ZQUtil_GetPrimaryDNS"},
    {"getSecondaryDNS", "ZQUtil_GetSecondaryDNS"},
    {"getGateway", "ZQUtil_GetGateway"},
    {"getProxy", "ZQUtil_GetProxy"},
    {"getNetworkType", "ZQUtil_GetNetworkType"},
    {"getDHCPEnabled", "ZQUtil_GetDHCPEnabled"},
    {"getProxyEnabled", "ZQUtil_GetProxyEnabled"},
    {"getSignalStrength", "ZQUtil_GetSignalStrength"},
    {"setWiredNetworkDHCP", "ZQUtil_SetWiredNetworkDHCP"},
    {"setWiredNetworkStatic", "ZQUtil_SetWiredNetworkStatic"},
    {"setWirelessNetworkDHCP", "ZQUtil_SetWirelessNetworkDHCP"},
    {"setWirelessNetworkStatic", "ZQUtil_SetWirelessNetworkStatic"},
    {"getWirelessSecurity", "ZQUtil_GetWirelessSecurity"},
    {"setProxy", "ZQUtil_SetProxy"},
    {"setProxyEnabled", "ZQUtil_SetProxyEnabled"},
    {"registerConnectivityListener", "ZQUtil_RegisterConnectivityListener"},
    {"checkConnectivity", "ZQUtil_CheckConnectivity"},
    {"getFirstTime", "ZQUtil_GetFirstTime"},
    {"setFirstTime", "ZQUtil_SetFirstTime"},
    {"getPhoneVolume", "ZQUtil_GetPhoneVolume"},
    {"setPhoneVolume", "ZQUtil_SetPhoneVolume"},
    {"MutePhone", "ZQUtil_MutePhone"},
    {"UnmutePhone", "ZQUtil_UnmutePhone"},
    {"getMediaVolume", "ZQUtil_GetMediaVolume"},
    {"setMediaVolume", "ZQUtil_SetMediaVolume"},
    {"getMicVolume", "ZQUtil_GetMicVolume"},
    {"setMicVolume", "ZQUtil_SetMicVolume"},
    {"MuteMic", "ZQUtil_MuteMic"},
    {"UnmuteMic", "ZQUtil_UnmuteMic"},
    {"getBrightness", "ZQUtil_GetBrightness"},
    {"setBrightness", "ZQUtil_SetBrightness"},
    {"getContrast", "ZQUtil_GetContrast"},
    {"setContrast", "ZQUtil_SetContrast"},
    {"getDimMode", "ZQUtil_GetDimMode"},
    {"setDimMode", "ZQUtil_SetDimMode"},
    {"screenStandby", "ZQUtil_ScreenStandby"},
    {"getTZList", "ZQUtil_GetTZList"},
    {"getNTPEnabled", "ZQUtil_GetNTPEnabled"},
    {"setNTPEnabled", "ZQUtil_SetNTPEnabled"},
    {"getPrimaryNTPServer", "ZQUtil_GetPrimaryNTPServer"},
    {"setPrimaryNTPServer", "ZQUtil_SetPrimaryNTPServer"},
    {"getSecondaryNTPServer", "ZQUtil_GetSecondaryNTPServer"},
    {"setSecondaryNTPServer", "ZQUtil_SetSecondaryNTPServer"},
    {"setTime", "ZQUtil_SetTime"},
    {"setTZ", "ZQUtil_SetTZ"},
    {"getTZ", "ZQUtil_GetTZ"},
    {"getMilitaryTimeEnabled", "ZQUtil_GetMilitaryTimeEnabled"},
    {"setMilitaryTimeEnabled", "ZQUtil_SetMilitaryTimeEnabled"},
    {"appLog", "ZQUtil_AppLog"},
    {"isTablet", "ZQUtil_IsTablet"},
    {"batteryPct", "ZQUtil_BatteryPct"},
    {"chargeStatus", "ZQUtil_ChargeStatus"},
    {"GetUpdateList", "ZQUtil_GetUpdateList"},
    {"beginUpdate", "ZQUtil_BeginUpdate"},
    {"registerUpdateListener", "ZQUtil_RegisterUpdateListener"},
    {"factoryReset", "ZQUtil_FactoryReset"},
    {"registerAboutListener", "ZQUtil_RegisterAboutListener"},
    {"getIniSetting", "ZQUtil_GetIniSetting"},
    {"setIniSetting", "ZQUtil_SetIniSetting"},
    {"deleteIniFile", "ZQUtil_DeleteIniFile"},
    {"writeFile", "ZQUtil_WriteFile"},
    {"deleteFile", "ZQUtil_DeleteFile"},
    {"utf8Encode", "ZQUtil_UTF8Encode"},
};
constexpr size_t kAllWrappersCount = sizeof kAllWrappers / sizeof kAllWrappers[0];

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
  MM_InitWrapper(nullptr, 0);
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

TEST_F(EntryPointsTest, TermLogsItsStartAndEndAndNothingElse) {
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
  Load();
  engine.ClassObject().methodOrder.clear();
  Load(10 * sizeof(uintptr_t));  // in place of the whole one
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

TEST_F(EntryPointsTest, ATableOfSixtySlotsIsReadUpToTheFortyFirst) {
  // The 42nd word lies on a page that nobody may read.
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  auto* const pages =
      static_cast<char*>(mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(pages, MAP_FAILED);
  ASSERT_EQ(mprotect(pages + page, page, PROT_NONE), 0);
  auto* const table = reinterpret_cast<uintptr_t*>(pages + page) - ZQ_ENGINE_SLOTS;
  std::copy_n(engine.Table(), size_t{ZQ_ENGINE_SLOTS}, table);
  MM_InitWrapper(table, 60 * sizeof(uintptr_t));
  munmap(pages, 2 * page);
  EXPECT_EQ(DefinedMethods(), kAllMethods);
  Object& object = engine.Construct();
  EXPECT_EQ(engine.Answer(object, "isTablet"), "no");
  BareEngine::Finalize(object);
  MM_TermWrapper();
}

TEST_F(EntryPointsTest, ReadsDefineMethodAgainBeforeEveryRow) {
  static int defined;
  defined = 0;
  const zq_DefineMethod thrice = [](void*, const char*, zq_NativeMethod, uint32_t) -> int32_t {
    if (++defined == 3) MM_InitWrapper(nullptr, 0);
    return 1;
  };
  engine.Table()[ZQ_SLOT_DEFINE_METHOD] = reinterpret_cast<uintptr_t>(thrice);
  Load();
  EXPECT_EQ(defined, 3);
}

TEST_F(EntryPointsTest, EachRowCarriesItsOwnWrapper) {
  Load();
  for (uint32_t row = 0; row < kAllWrappersCount; ++row) {
    const auto& [name, symbol] = kAllWrappers[row];
    const auto native = reinterpret_cast<zq_NativeMethod>(dlsym(RTLD_DEFAULT, symbol));
    ASSERT_NE(native, nullptr) << symbol;
    EXPECT_EQ(engine.ClassObject().methods.at(name).first, native) << name;
  }
  EXPECT_EQ(engine.ClassObject().methods.size(), kAllWrappersCount);
}

TEST_F(EntryPointsTest, TheModulesEndLeavesALivingObjectWhatItNeeds) {
  Object& object = New();
  MM_TermWrapper();
  EXPECT_EQ(engine.Answer(object, "isTablet"), "no");
  EXPECT_NE(ZQUtil::m_pInstance, nullptr);
}

TEST_F(EntryPointsTest, IntegersAreTaggedWords) {
  zq_Value result = 0;
  ASSERT_EQ(engine.Call(New(), "batteryPct", {}, &result), 1);
  EXPECT_EQ(result, 101U) << "50 percent: 50 * 2 + 1";
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
