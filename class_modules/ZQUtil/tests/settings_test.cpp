// Scripts' own settings and cache files, and their text conversion.
#include <sys/stat.h>

#include <filesystem>

#include "fault.h"
#include "module_fixture.h"

namespace {

namespace fs = std::filesystem;

class SettingsTest : public ModuleTest {
 protected:
  SettingsTest() : util(New()) {
    Settle();
    ForgetTraces();
  }

  std::string Answer(const std::string& method, std::vector<zq_Value> arguments) {
    return engine.Answer(util, method, std::move(arguments));
  }

  Object& util;
};

TEST_F(SettingsTest, AMissingSettingIsEmptyOrTheDefault) {
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("key")}), "");
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("key"), S("7")}), "7");
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("key"), N(7)}), "7");
  WriteFile("app.ini", "[config]\nother=1\n");
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("key"), S("7"), S("more")}), "7");
  EXPECT_EQ(
      Traces(),
      "ZQUtil Get Ini Setting\nZQUtil Get Ini Setting\nZQUtil Get Ini Setting\nZQUtil Get Ini Setting\n");
}

TEST_F(SettingsTest, TheDefaultOfAVoidOrNullThirdArgumentIsAsTheEngineSpellsIt) {
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("key"), ZQ_VALUE_VOID}), "undefined");
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("key"), ZQ_VALUE_NULL}), "null");
}

TEST_F(SettingsTest, AStoredSettingComesBack) {
  EXPECT_EQ(Answer("setIniSetting", {S("app"), S("color"), S("blue; #1")}), "<void>");
  Settle();
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("color"), S("red")}), "blue; #1");
  EXPECT_EQ(ReadFile("app.ini"), "[config]\ncolor=blue; #1\n");
}

TEST_F(SettingsTest, TracesAStoredSetting) {
  Answer("setIniSetting", {S("app"), S("color"), S("blue")});
  Settle();
  EXPECT_EQ(Traces(),
            "ZQUtil SetIniSetting\nZQUtil SetIniSetting app=app, name=color, val=blue\n"
            "Writing INI FIle String config, color, blue, app.ini\n");
}

TEST_F(SettingsTest, AValueCannotBecomeAnotherLine) {
  Answer("setIniSetting", {S("app"), S("note"), S("a\n[config]\nadmin=1")});
  Settle();
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("admin")}), "");
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("note")}), "a\n[config]\nadmin=1");
}

TEST_F(SettingsTest, AVoidOrNullValueIsStoredAsTheEngineSpellsIt) {
  EXPECT_EQ(Answer("setIniSetting", {S("app"), S("a"), ZQ_VALUE_NULL}), "<void>");
  EXPECT_EQ(Answer("setIniSetting", {S("app"), S("b"), ZQ_VALUE_VOID}), "<void>");
  Settle();
  EXPECT_EQ(StoredSetting("a", "app.ini"), "null");
  EXPECT_EQ(StoredSetting("b", "app.ini"), "undefined");
}

TEST_F(SettingsTest, ValuesOf1024BytesComeBackWholeAndLongerOnesCut) {
  const std::string whole(1024, 'v');
  Answer("setIniSetting", {S("app"), S("whole"), S(whole)});
  Answer("setIniSetting", {S("app"), S("long"), S(whole + "w")});
  Settle();
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("whole")}), whole);
  EXPECT_EQ(Answer("getIniSetting", {S("app"), S("long")}), whole);
  EXPECT_NE(ReadFile("app.ini").find("\nlong=" + whole + "w\n"), std::string::npos)
      << "the file keeps it all";
}

TEST_F(SettingsTest, TheApplicationZqutilIsTheModuleItself) {
  EXPECT_EQ(Answer("getIniSetting", {S("zqutil"), S("brightness")}), "255");
}

TEST_F(SettingsTest, SettingsMethodsFailOnMissingArguments) {
  for (const auto& bad : std::vector<std::vector<zq_Value>>{{},
                                                            {S("app")},
                                                            {ZQ_VALUE_VOID, S("k")},
                                                            {S("app"), ZQ_VALUE_NULL},
                                                            {ZQ_VALUE_NULL, S("k"), S("v")}}) {
    EXPECT_EQ(Answer("getIniSetting", bad), "<returned 0>") << bad.size();
    EXPECT_EQ(Answer("setIniSetting", bad), "<returned 0>") << bad.size();
  }
  EXPECT_EQ(Answer("setIniSetting", {S("app"), S("k")}), "<returned 0>");
  EXPECT_EQ(Answer("setIniSetting", {S("app"), S("k"), S("v"), S("w")}), "<returned 0>");
  Settle();
  EXPECT_FALSE(fs::exists("app.ini"));
}

TEST_F(SettingsTest, DeleteIniFileWantsTwoArguments) {
  WriteFile("app.ini", "[config]\na=1\n");
  EXPECT_EQ(Answer("deleteIniFile", {S("app")}), "<returned 0>");
  EXPECT_EQ(Answer("deleteIniFile", {S("app"), ZQ_VALUE_VOID}), "<returned 0>");
  EXPECT_EQ(Answer("deleteIniFile", {ZQ_VALUE_NULL, S("x")}), "<returned 0>");
  EXPECT_EQ(Answer("deleteIniFile", {S("app"), S("x"), S("y")}), "<returned 0>");
  EXPECT_TRUE(fs::exists("app.ini"));
  ForgetTraces();
  EXPECT_EQ(Answer("deleteIniFile", {S("app"), S("ignored")}), "<void>");
  EXPECT_FALSE(fs::exists("app.ini"));
  EXPECT_EQ(Traces(), "ZQUtil SetIniSetting\n") << "it shares the setter's text";
  EXPECT_EQ(Answer("deleteIniFile", {S("app"), N(0)}), "<void>") << "nothing to remove";
}

TEST_F(SettingsTest, AFileThatIsDeletedStaysDeletedThoughItsWritesWereUnderWay) {
  const Fault slow(OnThisMachine(""), "fsync:all:stall:5");
  for (int i = 0; i < 20; ++i) {
    Answer("setIniSetting", {S("app"), S("k" + std::to_string(i)), S("v")});
    Answer("setIniSetting", {S("other"), S("k" + std::to_string(i)), S("v")});
  }
  Answer("deleteIniFile", {S("app"), S("x")});
  EXPECT_FALSE(fs::exists("app.ini"));
  Answer("setIniSetting", {S("app"), S("after"), S("v")});
  Settle();
  EXPECT_EQ(ReadFile("app.ini"), "[config]\nafter=v\n");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(StoredSetting("k" + std::to_string(i), "other.ini"), "v");
}

TEST_F(SettingsTest, DeleteIniFileFindsTheConfiguredFolder) {
  fs::create_directory("settings");
  setenv("ZQ_CONFIG_DIR", "settings", 1);
  Answer("setIniSetting", {S("app"), S("k"), S("v")});
  Settle();
  EXPECT_TRUE(fs::exists("settings/app.ini"));
  Answer("deleteIniFile", {S("app"), S("x")});
  EXPECT_FALSE(fs::exists("settings/app.ini"));
  unsetenv("ZQ_CONFIG_DIR");
  fs::remove_all("settings");
}

TEST_F(SettingsTest, WriteFileLeavesExactlyItsBytes) {
  EXPECT_EQ(Answer("writeFile", {S("note"), S("abc")}), "<void>");
  EXPECT_EQ(ReadFile("./cache/note"), "abc");
  EXPECT_EQ(Answer("writeFile", {S("note"), S("")}), "<void>");
  EXPECT_EQ(ReadFile("./cache/note"), "");
  EXPECT_TRUE(fs::exists("./cache/note"));
  EXPECT_EQ(Traces(), "ZQUtil WriteFile\nZQUtil WriteFile\n");
}

TEST_F(SettingsTest, CacheNamesAreUsedUnchanged) {
  Answer("writeFile", {S("../beside"), S("b")});
  EXPECT_EQ(ReadFile("beside"), "b");
  Answer("deleteFile", {S("../beside")});
  EXPECT_FALSE(fs::exists("beside"));
}

TEST_F(SettingsTest, WithoutACacheFolderWriteFileEndsSilently) {
  fs::remove_all("cache");
  EXPECT_EQ(Answer("writeFile", {S("note"), S("abc")}), "<void>");
  EXPECT_FALSE(fs::exists("cache"));
}

TEST_F(SettingsTest, DeleteFileRemovesACacheFile) {
  Answer("writeFile", {S("note"), S("abc")});
  EXPECT_EQ(Answer("deleteFile", {S("note")}), "<void>");
  EXPECT_FALSE(fs::exists("./cache/note"));
  EXPECT_EQ(Answer("deleteFile", {S("note")}), "<void>");
  EXPECT_EQ(Traces(), "ZQUtil WriteFile\nZQUtil DeleteFile\nZQUtil DeleteFile\n");
}

TEST_F(SettingsTest, CacheMethodsFailOnAWrongCount) {
  for (const auto& bad : std::vector<std::vector<zq_Value>>{
           {}, {S("n")}, {S("n"), S("c"), S("x")}, {ZQ_VALUE_NULL, S("c")}, {S("n"), ZQ_VALUE_VOID}}) {
    EXPECT_EQ(Answer("writeFile", bad), "<returned 0>") << bad.size();
  }
  for (const auto& bad :
       std::vector<std::vector<zq_Value>>{{}, {S("n"), S("c")}, {ZQ_VALUE_NULL}, {ZQ_VALUE_VOID}}) {
    EXPECT_EQ(Answer("deleteFile", bad), "<returned 0>") << bad.size();
    EXPECT_EQ(Answer("utf8Encode", bad), "<returned 0>") << bad.size();
  }
}

TEST_F(SettingsTest, Utf8EncodeConvertsFromLatin1) {
  EXPECT_EQ(Answer("utf8Encode", {S("\xE9")}), "\xC3\xA9");
  EXPECT_EQ(Answer("utf8Encode", {S("abc")}), "abc");
  EXPECT_EQ(Answer("utf8Encode", {S("")}), "");
  EXPECT_EQ(Answer("utf8Encode", {N(12)}), "12");
  EXPECT_EQ(Answer("utf8Encode", {S(std::string(5000, '\xFF'))}).size(), 10000U);
}

}  // namespace
