// The clock settings as scripts see them, and what they leave in the key store and ask of the time service.
#include <gtest/gtest.h>

#include <filesystem>

#include "ZQDateTime.h"
#include "file_rights.h"
#include "module_fixture.h"
#include "nvram.h"
#include "zone_tree.h"
#include "zq_memory.h"

namespace fs = std::filesystem;

namespace {

constexpr char kTrigger[] = "/tmp/do_time";
constexpr char kDate[] = "/etc/datetime";
constexpr char kEdition[] = "/etc/client.tag";
constexpr char kRequest[] =
    "ZQUtil creating /tmp/do_time\nZQUtil created /tmp/do_time\nZQUtil done /tmp/do_time\n";
constexpr char kGB[] = "(BST+01:00) British Summer Time";
constexpr char kEastern[] = "(GMT-05:00) Eastern Time (US & Canada)";
constexpr char kAmsterdam[] = "(GMT+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna";

class DateTimeTest : public ModuleTest {
 protected:
  DateTimeTest() : util(New()) {
    fs::remove_all(kTrigger);
    fs::remove_all(kDate);
    WriteFile(kEdition, "home-phone\n");
    Settle();
    ForgetTraces();
  }
  ~DateTimeTest() override {
    fs::remove_all(kTrigger);
    fs::remove_all(kDate);
    fs::remove_all(kEdition);
    WriteFile(kEdition, "home-phone\n");
  }

  // Calls the setter; what it traced, without its first line, which is checked here.
  std::string Set(const std::string& method, const std::vector<zq_Value>& arguments) {
    fs::remove(kTrigger);
    ForgetTraces();
    EXPECT_EQ(engine.Answer(util, method, arguments), "<void>") << method;
    return WithoutCall(method);
  }
  std::string Get(const std::string& method) {
    ForgetTraces();
    const std::string answer = engine.Answer(util, method);
    WithoutCall(method);
    return answer;
  }
  std::string WithoutCall(std::string member) {
    member[0] = static_cast<char>(toupper(member[0]));
    const std::string call = "ZQUtil GUI Call to " + member + "\n";
    const std::string traces = Traces();
    EXPECT_EQ(traces.substr(0, call.size()), call);
    return traces.substr(std::min(call.size(), traces.size()));
  }
  // Whether the time service was asked since the last setter.
  static bool Asked() { return ReadFile(kTrigger) == "1"; }
  ZQDateTime& DateTime() { return *ZQUtil::m_pInstance->dateTime; }

  Object& util;
};

TEST_F(DateTimeTest, ADeviceThatWasToldNothingKeepsItsClockRightAndShowsTwelveHours) {
  EXPECT_EQ(Get("getNTPEnabled"), "YES");
  EXPECT_EQ(Get("getMilitaryTimeEnabled"), "NO");
  EXPECT_EQ(Get("getPrimaryNTPServer"), kDefaultPrimaryNTPServer);
  EXPECT_EQ(Get("getSecondaryNTPServer"), kDefaultSecondaryNTPServer);
  EXPECT_STRNE(kDefaultPrimaryNTPServer, kDefaultSecondaryNTPServer);
}

TEST_F(DateTimeTest, OnlyNoTurnsNetworkTimeOff) {
  const std::pair<const char*, const char*> rows[] = {{"no", "NO"},   {"NO", "NO"},    {"nO", "NO"},
                                                      {"", "YES"},    {"none", "YES"}, {"n", "YES"},
                                                      {"YES", "YES"}, {"0", "YES"}};
  for (const auto& [stored, answer] : rows) {
    StoreKey("net.ntpenabled", stored);
    EXPECT_EQ(Get("getNTPEnabled"), answer) << stored;
  }
}

TEST_F(DateTimeTest, OnlyYesTurnsTwentyFourHoursOn) {
  const std::pair<const char*, const char*> rows[] = {{"yes", "YES"}, {"YES", "YES"}, {"yEs", "YES"},
                                                      {"", "NO"},     {"yess", "NO"}, {"y", "NO"},
                                                      {"true", "NO"}, {"1", "NO"}};
  for (const auto& [stored, answer] : rows) {
    StoreKey("net.mte", stored);
    EXPECT_EQ(Get("getMilitaryTimeEnabled"), answer) << stored;
  }
}

TEST_F(DateTimeTest, TrueAndYesEnableAndAnyOtherTextDisables) {
  for (const auto& [method, key] :
       {std::pair{"setNTPEnabled", "net.ntpenabled"}, {"setMilitaryTimeEnabled", "net.mte"}}) {
    for (const char* const text : {"true", "TRUE", "Yes", "yes"}) {
      StoreKey(key, "x");
      EXPECT_EQ(Set(method, {S(text)}), kRequest);
      EXPECT_EQ(StoredKey(key), "YES") << text;
      EXPECT_TRUE(Asked());
    }
    for (const char* const text : {"1", "on", "", "no", "false", "true ", "yes\n"}) {
      StoreKey(key, "x");
      EXPECT_EQ(Set(method, {S(text)}), kRequest);
      EXPECT_EQ(StoredKey(key), "NO") << text;
    }
    Set(method, {N(1)});
    EXPECT_EQ(StoredKey(key), "NO");
  }
}

TEST_F(DateTimeTest, ServersAreKeptAndGoBackToTheDefaultWithAnEmptyText) {
  const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
      {"setPrimaryNTPServer", "getPrimaryNTPServer", "net.priNTP", kDefaultPrimaryNTPServer},
      {"setSecondaryNTPServer", "getSecondaryNTPServer", "net.secNTP", kDefaultSecondaryNTPServer}};
  for (const auto& [setter, getter, key, fallback] : rows) {
    EXPECT_EQ(Set(setter, {S("time.example")}), kRequest);
    EXPECT_EQ(StoredKey(key), "time.example");
    EXPECT_EQ(Get(getter), "time.example");
    EXPECT_EQ(Set(setter, {S("")}), kRequest);
    EXPECT_EQ(StoredKey(key), "<none>");
    EXPECT_EQ(Get(getter), fallback);
    StoreKey(key, "");
    EXPECT_EQ(Get(getter), fallback);
    Set(setter, {S(std::string(300, 'a'))});
    EXPECT_EQ(StoredKey(key), std::string(300, 'a'));
    EXPECT_EQ(Get(getter), std::string(127, 'a')) << "what fits is read";
  }
}

TEST_F(DateTimeTest, NullErasesWhereAPartOfTheModulePassesIt) {
  StoreKey("net.priNTP", "a");
  StoreKey("net.secNTP", "b");
  StoreKey("sys.tz", "c");
  DateTime().setPrimaryNTPServer(nullptr);
  DateTime().setSecondaryNTPServer(nullptr);
  DateTime().setTZ(nullptr);
  EXPECT_EQ(Traces(), kRequest + std::string(kRequest) + kRequest);
  EXPECT_EQ(StoredKey("net.priNTP") + StoredKey("net.secNTP") + StoredKey("sys.tz"), "<none><none><none>");
}

TEST_F(DateTimeTest, TextsAreMadeWithTheirNul) {
  const auto length = [&](const char* method) {
    zq_Value result = ZQ_VALUE_VOID;
    engine.Call(util, method, {}, &result);
    return engine.LengthGiven(result);
  };
  EXPECT_EQ(length("getNTPEnabled"), 4U);
  EXPECT_EQ(length("getMilitaryTimeEnabled"), 3U);
  StoreKey("net.priNTP", "abc");
  EXPECT_EQ(length("getPrimaryNTPServer"), 4U);
  const ClosedKeyStore closed;
  EXPECT_EQ(length("getPrimaryNTPServer"), 1U);
}

TEST_F(DateTimeTest, AKeyStoreThatCannotBeOpenedAnswersNothingAndAsksForNothing) {
  const ClosedKeyStore closed;
  EXPECT_EQ(Get("getNTPEnabled"), "NO");
  EXPECT_EQ(Get("getMilitaryTimeEnabled"), "NO");
  EXPECT_EQ(Get("getPrimaryNTPServer"), "");
  EXPECT_EQ(Get("getSecondaryNTPServer"), "");
  EXPECT_EQ(DateTime().getTZ(), nullptr);
  ForgetTraces();
  for (const char* const method :
       {"setNTPEnabled", "setMilitaryTimeEnabled", "setPrimaryNTPServer", "setSecondaryNTPServer", "setTZ"}) {
    EXPECT_EQ(Set(method, {S("yes")}).find("do_time"), std::string::npos) << method;
    EXPECT_FALSE(fs::exists(kTrigger)) << method;
  }
}

TEST_F(DateTimeTest, ATriggerThatCannotBeMadeIsNoFailure) {
  fs::create_directory(kTrigger);
  ForgetTraces();
  EXPECT_EQ(engine.Answer(util, "setNTPEnabled", {S("no")}), "<void>");
  EXPECT_EQ(WithoutCall("setNTPEnabled"), "ZQUtil creating /tmp/do_time\nZQUtil done /tmp/do_time\n");
  EXPECT_EQ(StoredKey("net.ntpenabled"), "NO");
}

TEST_F(DateTimeTest, TwelveCharactersAreADate) {
  EXPECT_EQ(Set("setTime", {S("112112002026")}),
            "ZQUtil Checking string length 12 112112002026\n"
            "ZQUtil Writing date/time 112112002026\n" +
                std::string(kRequest));
  EXPECT_EQ(ReadFile(kDate), "112112002026");
  EXPECT_TRUE(Asked());
  Set("setTime", {S("twelve chars")});
  EXPECT_EQ(ReadFile(kDate), "twelve chars") << "the time service knows what they mean; the file is replaced";
}

TEST_F(DateTimeTest, AnotherLengthOnlyAsksForTheSettingsToBeApplied) {
  for (const std::string& text : {std::string("1234567890"), std::string("1234567890123"), std::string()}) {
    EXPECT_EQ(Set("setTime", {S(text)}), "ZQUtil Checking string length 12 " + text + "\n" + kRequest);
    EXPECT_TRUE(Asked());
    EXPECT_FALSE(fs::exists(kDate));
  }
}

TEST_F(DateTimeTest, ADateThatCannotBeWrittenIsTracedAndAskedForAllTheSame) {
  fs::create_directory(kDate);
  EXPECT_EQ(Set("setTime", {S("112112002026")}),
            "ZQUtil Checking string length 12 112112002026\nZQUtil cannot open /etc/datetime\n" +
                std::string(kRequest));
  EXPECT_TRUE(Asked());
}

TEST_F(DateTimeTest, ANullDateDoesNothing) {
  DateTime().setTime(nullptr);
  EXPECT_EQ(Traces(), "");
}

TEST_F(DateTimeTest, SettersWithoutATextDoNothing) {
  StoreKey("sys.tz", "/usr/share/zoneinfo/GB");
  for (const char* const method : {"setNTPEnabled", "setMilitaryTimeEnabled", "setPrimaryNTPServer",
                                   "setSecondaryNTPServer", "setTZ", "setTime"}) {
    for (const std::vector<zq_Value>& arguments :
         {std::vector<zq_Value>{}, {ZQ_VALUE_VOID}, {ZQ_VALUE_NULL}}) {
      EXPECT_EQ(Set(method, arguments), "") << method;
    }
  }
  EXPECT_FALSE(fs::exists(kTrigger));
  EXPECT_EQ(StoredKey("sys.tz"), "/usr/share/zoneinfo/GB");
  Set("setTZ", {S("/usr/share/zoneinfo/GMT"), S("another")});
  EXPECT_EQ(StoredKey("sys.tz"), "/usr/share/zoneinfo/GMT") << "what follows is not looked at";
}

TEST_F(DateTimeTest, AZoneIsSetByItsPathAndAnsweredByItsDescription) {
  EXPECT_EQ(Set("setTZ", {S("/usr/share/zoneinfo/Europe/Amsterdam")}),
            "ZQUtil setting TZ to /usr/share/zoneinfo/Europe/Amsterdam\n" + std::string(kRequest));
  EXPECT_EQ(StoredKey("sys.tz"), "/usr/share/zoneinfo/Europe/Amsterdam");
  ForgetTraces();
  EXPECT_EQ(engine.Answer(util, "getTZ"), kAmsterdam);
  EXPECT_EQ(Traces(),
            "ZQUtil GUI Call to GetTZ\nZQUtil getTZ returning /usr/share/zoneinfo/Europe/Amsterdam\n"
            "ZQUtil querying list with /usr/share/zoneinfo/Europe/Amsterdam\n"
            "ZQUtil returning TZDesc (GMT+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna\n");
}

TEST_F(DateTimeTest, AZoneThatIsNotListedIsAnsweredByItsPath) {
  for (const char* const path : {"/usr/share/zoneinfo/Europe/Paris", "Europe/Amsterdam", "nonsense"}) {
    StoreKey("sys.tz", path);
    EXPECT_EQ(Get("getTZ"), path);
  }
}

TEST_F(DateTimeTest, AnEmptyZoneIsStoredAndMeansTheEditionsZone) {
  EXPECT_EQ(Set("setTZ", {S("")}), "ZQUtil setting TZ to \n" + std::string(kRequest));
  EXPECT_EQ(StoredKey("sys.tz"), "");
  EXPECT_EQ(Get("getTZ"), kEastern);
  EXPECT_EQ(StoredKey("sys.tz"), "") << "the default is not stored";
}

TEST_F(DateTimeTest, TheZoneOfAnEditionIsLookedUpLikeAnother) {
  StoreKey("sys.tz", "");
  ForgetTraces();
  EXPECT_EQ(engine.Answer(util, "getTZ"), kEastern);
  EXPECT_EQ(Traces(),
            "ZQUtil GUI Call to GetTZ\nZQUtil getTZ returning \n"
            "ZQUtil querying list with /usr/share/zoneinfo/US/Eastern\n"
            "ZQUtil returning TZDesc (GMT-05:00) Eastern Time (US & Canada)\n");
}

TEST_F(DateTimeTest, AKeyStoreThatCannotBeOpenedGivesTheEditionsZone) {
  const ClosedKeyStore closed;
  ForgetTraces();
  EXPECT_EQ(engine.Answer(util, "getTZ"), kEastern);
  EXPECT_NE(Traces().find("ZQUtil getTZ returning NULL\n"), std::string::npos);
}

TEST_F(DateTimeTest, EditionFilesOfEverySize) {
  const auto zone = [&](const std::string& bytes) {
    WriteFile(kEdition, bytes);
    return Get("getTZ");
  };
  EXPECT_EQ(zone("KVL-basic"), kAmsterdam);
  EXPECT_EQ(zone("vy"), kGB);
  EXPECT_EQ(zone(""), kEastern);
  EXPECT_EQ(zone("k"), kEastern);
  EXPECT_EQ(zone(std::string("kvl\0", 4)), kAmsterdam);
  EXPECT_EQ(zone(std::string("kv\0l", 4)), kEastern);
  EXPECT_EQ(zone("NorvikFlash" + std::string((1 << 20) - 11, '\n')), kAmsterdam);
  EXPECT_EQ(zone(std::string(1 << 20, 'x')), kEastern);
  EXPECT_EQ(zone(std::string((16 << 20) + 1, 'k')), kGB) << "more than is read";
}

TEST_F(DateTimeTest, AnEditionFileThatCannotBeReadIsNotAnUnknownEdition) {
  fs::remove(kEdition);
  EXPECT_EQ(Get("getTZ"), kGB);
  fs::create_directory(kEdition);
  EXPECT_EQ(Get("getTZ"), kGB);
  fs::remove(kEdition);
  WriteFile(kEdition, "kvl");
  fs::permissions(kEdition, fs::perms::none);
  {
    const OrdinaryFileRights ordinary;
    EXPECT_EQ(Get("getTZ"), kGB);
  }
  fs::permissions(kEdition, fs::perms::owner_all);  // for a user who is not root
  EXPECT_EQ(Get("getTZ"), kAmsterdam);
}

class ZoneScriptTest : public ModuleTest {
 protected:
  Object& List() {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util, "getTZList", {}, &result), 1);
    return *reinterpret_cast<Object*>(result);
  }

  const ZoneTree tree;
  Object& util = (tree.Install("GMT"), tree.Install("Canada/Atlantic"), New());
};

TEST_F(ZoneScriptTest, TheListIsAnArrayOfNamesAndDescriptions) {
  Settle();
  ForgetTraces();
  Object& array = List();
  EXPECT_EQ(Traces(), "ZQUtil GUI Call to GetTZList\n");
  ASSERT_EQ(array.elements.size(), 2U);
  std::string all;
  for (const auto& [index, value] : array.elements) {
    Object& zone = *reinterpret_cast<Object*>(value);
    all += std::to_string(index) + ":";
    for (const std::string& name : zone.order) all += name + "=" + engine.Show(zone.properties[name]) + ";";
    EXPECT_EQ(engine.LengthGiven(zone.properties["Name"]), engine.Show(zone.properties["Name"]).size() + 1);
  }
  EXPECT_EQ(all,
            "0:Name=/usr/share/zoneinfo/Canada/Atlantic;Description=(GMT-04:00) Atlantic Time (Canada);"
            "1:Name=/usr/share/zoneinfo/GMT;Description=(GMT+00:00) Greenwich Mean Time: Dublin, Edinburgh, "
            "Lisbon, London;");
}

TEST_F(ZoneScriptTest, AMissingTextBecomesTheEmptyString) {
  zq_List& list = *ZQUtil::m_pInstance->dateTime->getTZList();
  auto* const node = static_cast<TimeZoneNode*>(zq__calloc(1, sizeof(TimeZoneNode), "test", __LINE__));
  list.AddTail(node);  // the list's now
  Object& zone = *reinterpret_cast<Object*>(List().elements[2]);
  EXPECT_EQ(engine.Show(zone.properties["Name"]) + engine.Show(zone.properties["Description"]), "");
  EXPECT_EQ(engine.LengthGiven(zone.properties["Name"]), 1U);
}

TEST_F(ZoneScriptTest, AnEmptyListIsAnEmptyArray) {
  zq_List& list = *ZQUtil::m_pInstance->dateTime->getTZList();
  std::vector<void*> nodes;
  while (void* const node = list.RemoveHead()) nodes.push_back(node);
  EXPECT_EQ(List().elements.size(), 0U);
  for (void* const node : nodes) list.AddTail(node);
}

TEST_F(ZoneScriptTest, WithoutTheClockSettingsEveryMethodSucceedsAndAnswersNothing) {
  ZQUtil& singleton = *ZQUtil::m_pInstance;
  ZQDateTime* const dateTime = std::exchange(singleton.dateTime, nullptr);
  for (const char* const method :
       {"getTZList", "getNTPEnabled", "setNTPEnabled", "getPrimaryNTPServer", "setPrimaryNTPServer",
        "getSecondaryNTPServer", "setSecondaryNTPServer", "setTime", "setTZ", "getTZ",
        "getMilitaryTimeEnabled", "setMilitaryTimeEnabled"}) {
    EXPECT_EQ(engine.Answer(util, method, {S("yes")}), "<void>") << method;
  }
  singleton.dateTime = dateTime;
}

class ZoneServicesTest : public ModuleTest {};

TEST_F(ZoneServicesTest, AHostWithoutObjectsOrElementsGetsAnEmptyArray) {
  for (const zq_EngineSlot slot : {ZQ_SLOT_NEW_OBJECT, ZQ_SLOT_SET_ELEMENT}) {
    const uintptr_t service = std::exchange(engine.Table()[slot], 0);
    Load();
    Object& util = New();
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util, "getTZList", {}, &result), 1);
    ASSERT_EQ(engine.Show(result), "<object>");
    EXPECT_EQ(reinterpret_cast<Object*>(result)->elements.size(), 0U);
    engine.Table()[slot] = service;
  }
}

TEST_F(ZoneServicesTest, AHostWithoutArraysGetsNothing) {
  engine.Remove(ZQ_SLOT_NEW_ARRAY);
  EXPECT_EQ(engine.Answer(New(), "getTZList"), "<void>");
}

}  // namespace
