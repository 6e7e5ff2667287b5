// Volumes, brightness, contrast and dim mode as scripts set and read them.
#include <gtest/gtest.h>

#include <sstream>

#include "BrightnessScale.h"
#include "ContrastScale.h"
#include "ZQScreen.h"
#include "audio_volume.h"
#include "module_fixture.h"

namespace {

// The traces with those of the settings' writers, which come when they like, at the end.
std::string WritersLast(const std::string& traces) {
  std::istringstream lines(traces);
  std::string others;
  std::string writers;
  for (std::string line; std::getline(lines, line);) {
    (line.rfind("Writing INI FIle", 0) == 0 ? writers : others) += line + "\n";
  }
  return others + writers;
}

class VolumesAndScreenTest : public ModuleTest {
 protected:
  VolumesAndScreenTest() : util(New()) {
    Settle();
    ForgetTraces();
  }

  std::string Answer(const std::string& method, std::vector<zq_Value> arguments = {}) {
    return engine.Answer(util, method, std::move(arguments));
  }
  // Sets by one method, reads by another.
  std::string Set(const std::string& setter, zq_Value value, const std::string& getter) {
    EXPECT_EQ(Answer(setter, {value}), "<void>");
    return Answer(getter);
  }

  Object& util;
};

TEST_F(VolumesAndScreenTest, PhoneAndMediaVolumeAreOneValue) {
  EXPECT_EQ(Set("setMediaVolume", N(30), "getPhoneVolume"), "30");
  EXPECT_EQ(Set("setPhoneVolume", N(31), "getMediaVolume"), "31");
  EXPECT_EQ(Answer("getMicVolume"), "50");
}

TEST_F(VolumesAndScreenTest, VolumesAreClamped) {
  for (const auto& [setter, getter] :
       std::vector<std::pair<const char*, const char*>>{{"setPhoneVolume", "getPhoneVolume"},
                                                        {"setMediaVolume", "getMediaVolume"},
                                                        {"setMicVolume", "getMicVolume"}}) {
    EXPECT_EQ(Set(setter, N(150), getter), "100");
    EXPECT_EQ(Set(setter, N(-5), getter), "0");
    EXPECT_EQ(Set(setter, S("99999999999999999999"), getter), "100");
    EXPECT_EQ(Set(setter, S("-99999999999999999999"), getter), "0");
    EXPECT_EQ(Set(setter, S(" 42abc"), getter), "42");
    EXPECT_EQ(Set(setter, S("loud"), getter), "0");
  }
}

TEST_F(VolumesAndScreenTest, VolumesAndLevelsAreStoredClamped) {
  const std::pair<const char*, const char*> settings[] = {{"setPhoneVolume", "phoneVolume"},
                                                          {"setMediaVolume", "mediaVolume"},
                                                          {"setMicVolume", "micVolume"},
                                                          {"setBrightness", "brightness"}};
  for (const auto& [setter, key] : settings) {
    for (const auto& [text, stored] :
         std::vector<std::pair<const char*, const char*>>{{"150", "100"},
                                                          {"-5", "0"},
                                                          {"101", "100"},
                                                          {"100", "100"},
                                                          {"99", "99"},
                                                          {"1", "1"},
                                                          {"0", "0"},
                                                          {"-1", "0"},
                                                          {"4294967296", "100"},
                                                          {"-9223372036854775809", "0"},
                                                          {"12.9", "12"},
                                                          {"010", "10"},
                                                          {"0x10", "0"},
                                                          {"", "0"}}) {
      Answer(setter, {S(text)});
      Settle();
      EXPECT_EQ(StoredSetting(key), stored) << setter << " " << text;
    }
  }
}

TEST_F(VolumesAndScreenTest, AStoredVolumeIsClampedInTheAnswerOnly) {
  ZQUtil::m_pInstance->audioVolume->setMicVolume(200);
  EXPECT_EQ(Answer("getMicVolume"), "100");
  Settle();
  EXPECT_EQ(StoredSetting("micVolume"), "200");
}

TEST_F(VolumesAndScreenTest, MissingArgumentsSetNothing) {
  for (const char* setter :
       {"setPhoneVolume", "setMediaVolume", "setMicVolume", "setBrightness", "setContrast"}) {
    EXPECT_EQ(Answer(setter), "<void>");
    EXPECT_EQ(Answer(setter, {ZQ_VALUE_VOID}), "<void>");
    EXPECT_EQ(Answer(setter, {ZQ_VALUE_NULL}), "<void>");
  }
  EXPECT_EQ(Answer("getPhoneVolume"), "75");
  EXPECT_EQ(Answer("getMicVolume"), "50");
  EXPECT_EQ(Answer("getBrightness"), "100");
  EXPECT_EQ(Answer("getContrast"), "2");
}

TEST_F(VolumesAndScreenTest, TracesVolumeCalls) {
  Answer("getPhoneVolume");
  Answer("getMediaVolume");
  Answer("getMicVolume");
  Answer("MutePhone");
  Answer("MuteMic");
  Answer("UnmuteMic");
  EXPECT_EQ(Traces(),
            "ZQUtil GUI Call to GetPhoneVolume\nZQUtil Returning 75\nZQUtil GUI Call to GetMediaVolume\n"
            "ZQUtil Returning 75\nZQUtil GUI Call to GetMicVolume\nZQUtil Returning 50\n"
            "ZQUtil GUI Call to mutePhone\nZQUtil Mute Phone\nZQUtil GUI Call to muteMic\nZQUtil Mute Mic\n"
            "ZQUtil GUI Call to UnuteMic\nZQUtil Unmute Mic\n");
}

TEST_F(VolumesAndScreenTest, TracesVolumeSetters) {
  for (const auto& [method, name] :
       std::vector<std::pair<const char*, const char*>>{{"setPhoneVolume", "SetPhoneVolume"},
                                                        {"setMediaVolume", "SetMediaVolume"},
                                                        {"setMicVolume", "SetMicVolume"}}) {
    Settle();
    ForgetTraces();
    Answer(method, {N(150)});
    EXPECT_EQ(Traces().rfind("ZQUtil GUI Call to " + std::string(name) + "\nZQUtil Setting 100\n", 0), 0U)
        << Traces();
  }
}

TEST_F(VolumesAndScreenTest, UnmutingThePhoneStoresTheSameVolumeAgain) {
  Answer("UnmutePhone");
  EXPECT_EQ(Answer("getPhoneVolume"), "75");
  Settle();
  EXPECT_EQ(Traces().rfind("ZQUtil GUI Call to unmutePhone\nZQUtil Unmute Phone\n", 0), 0U);
  EXPECT_NE(Traces().find("ZQUtil Asynchronous config write (1)\n"), std::string::npos);
}

TEST_F(VolumesAndScreenTest, MutingStoresNothing) {
  Answer("MutePhone");
  Answer("MuteMic");
  Answer("UnmuteMic");
  Settle();
  EXPECT_EQ(Traces().find("config write"), std::string::npos);
}

TEST_F(VolumesAndScreenTest, TheDefaultBrightnessIsReportedAs100) {
  EXPECT_EQ(Answer("getBrightness"), "100");
  EXPECT_EQ(Set("setBrightness", N(37), "getBrightness"), "37");
  EXPECT_EQ(Set("setBrightness", N(-1), "getBrightness"), "0");
  EXPECT_EQ(Set("setBrightness", N(101), "getBrightness"), "100");
  Settle();
  EXPECT_EQ(ReadFile("/proc/blctrl"), "100");
}

TEST_F(VolumesAndScreenTest, ContrastStepsAreClampedAndMapped) {
  EXPECT_EQ(Set("setContrast", N(0), "getContrast"), "1");
  EXPECT_EQ(ZQUtil::m_pInstance->screen->getContrast(), 16);
  EXPECT_EQ(Set("setContrast", N(11), "getContrast"), "10");
  EXPECT_EQ(ZQUtil::m_pInstance->screen->getContrast(), 30);
  ZQUtil::m_pInstance->screen->setContrast(15);
  EXPECT_EQ(Answer("getContrast"), "10");
  Settle();
  EXPECT_EQ(StoredSetting("contrast"), "15");
}

TEST_F(VolumesAndScreenTest, EachContrastStepStoresItsBoardValueAndIsReportedAgain) {
  std::string stored;
  std::string reported;
  for (int step = -1; step <= 12; ++step) {
    Answer("setContrast", {N(step)});
    Settle();
    stored += StoredSetting("contrast") + " ";
    reported += Answer("getContrast") + " ";
  }
  EXPECT_EQ(stored, "16 16 16 17 19 21 23 25 27 28 29 30 30 30 ");
  EXPECT_EQ(reported, "1 1 1 2 3 4 5 6 7 8 9 10 10 10 ");
}

TEST_F(VolumesAndScreenTest, AContrastThatIsNoNumberIsTheFirstStepAndALargeOneTheLast) {
  EXPECT_EQ(Set("setContrast", S("sharp"), "getContrast"), "1");
  EXPECT_EQ(Set("setContrast", S("99999999999999999999"), "getContrast"), "10");
  EXPECT_EQ(Set("setContrast", S("-99999999999999999999"), "getContrast"), "1");
  EXPECT_EQ(Set("setContrast", S(" 5x"), "getContrast"), "5");
}

TEST_F(VolumesAndScreenTest, EveryStoredContrastIsReportedAsItsStep) {
  std::string steps;
  Object* current = &util;
  for (int board = 14; board <= 31; ++board) {
    Settle();
    Drop(*current);
    WriteFile("zqutil.ini", "[config]\ncontrast=" + std::to_string(board) + "\n");
    current = &New();
    steps += engine.Answer(*current, "getContrast") + " ";
  }
  EXPECT_EQ(steps, "10 10 1 2 2 3 4 4 5 5 6 6 7 7 8 9 10 10 ");
}

TEST_F(VolumesAndScreenTest, TheScreenConvertsByTheScales) {
  const ZQScreen& screen = *ZQUtil::m_pInstance->screen;
  for (int32_t value = -2; value <= 300; ++value) {
    EXPECT_EQ(screen.BoardContrastToGUIContrast(value), ContrastStepOfBoard(value));
    EXPECT_EQ(screen.GUIContrastToBoardContrast(value), ContrastBoardOfStep(value));
    EXPECT_EQ(screen.BoardBrightnessToGUIBrightness(value), BrightnessPercentOfBoard(value));
    EXPECT_EQ(screen.GUIBrightnessToBoardBrightness(value), BrightnessBoardOfPercent(value));
  }
}

TEST_F(VolumesAndScreenTest, TracesScreenCalls) {
  Answer("getBrightness");
  Answer("getContrast");
  Answer("getDimMode");
  EXPECT_EQ(Traces(),
            "ZQUtil GUI Call to GetBrightness\ngetBrightness returning 255\nZQUtil GUI Call to GetContrast\n"
            "getContrast returning 17\nZQUtil GUI Call to GetDimMode\n");
}

TEST_F(VolumesAndScreenTest, TracesScreenSettersTheNewValueAndTheOld) {
  const auto tracesOf = [this](const char* setter, zq_Value value) {
    Settle();
    ForgetTraces();
    Answer(setter, {value});
    Settle();
    return WritersLast(Traces());
  };
  EXPECT_EQ(tracesOf("setBrightness", N(137)),
            "ZQUtil GUI Call to SetBrightness\nsetBrightness 100 (255)\n"
            "ZQUtil Asynchronous config write (2)\ngetBrightness returning 100\n"
            "ZQUtil opening /proc/blctrl\nZqUtil Writing screen brightness\ngetBrightness returning 100\n"
            "Writing INI FIle Int config, brightness, 100, zqutil.ini\n");
  EXPECT_EQ(tracesOf("setContrast", N(3)),
            "ZQUtil GUI Call to SetContrast\nsetContrast 19\nZQUtil Asynchronous config write (3)\n"
            "getContrast returning 19\nWriting INI FIle Int config, contrast, 19, zqutil.ini\n");
  EXPECT_EQ(tracesOf("setDimMode", S("True")),
            "ZQUtil GUI Call to SetDimMode\nWriting INI FIle String config, autolight, true, zqutil.ini\n")
      << "at once, not by the queue";
  EXPECT_EQ(tracesOf("setBrightness", ZQ_VALUE_NULL), "ZQUtil GUI Call to SetBrightness\n");
}

TEST_F(VolumesAndScreenTest, DimModeIsOnForTrueInAnyCaseOnly) {
  EXPECT_EQ(Answer("getDimMode"), "FALSE");
  EXPECT_EQ(Set("setDimMode", S("TRUE"), "getDimMode"), "TRUE");
  Settle();
  EXPECT_EQ(StoredSetting("autolight"), "true");
  EXPECT_EQ(Set("setDimMode", S("yes"), "getDimMode"), "FALSE");
  Settle();
  EXPECT_EQ(StoredSetting("autolight"), "false");
  EXPECT_EQ(Set("setDimMode", S("tRue"), "getDimMode"), "TRUE");
  for (const char* other : {"trueish", "tru", " true", "true ", "1", ""}) {
    EXPECT_EQ(Set("setDimMode", S(other), "getDimMode"), "FALSE") << other;
    Answer("setDimMode", {S("true")});
  }
  EXPECT_EQ(Set("setDimMode", N(1), "getDimMode"), "FALSE");
  Answer("setDimMode", {S("true")});
  Answer("setDimMode");
  Answer("setDimMode", {ZQ_VALUE_NULL});
  EXPECT_EQ(Answer("getDimMode"), "TRUE");
}

TEST_F(VolumesAndScreenTest, DimModeComesFromTheSettings) {
  Settle();
  Drop(util);
  WriteFile("zqutil.ini", "[config]\nautolight=Yes\n");
  EXPECT_EQ(engine.Answer(New(), "getDimMode"), "TRUE");
}

TEST_F(VolumesAndScreenTest, WithoutItsPartsEveryMethodSucceedsAndDoesNothing) {
  ZQUtil& singleton = *ZQUtil::m_pInstance;
  ZQAudioVolume* const volumes = std::exchange(singleton.audioVolume, nullptr);
  ZQScreen* const screen = std::exchange(singleton.screen, nullptr);
  for (const char* getter :
       {"getPhoneVolume", "getMediaVolume", "getMicVolume", "getBrightness", "getContrast", "getDimMode",
        "MutePhone", "UnmutePhone", "MuteMic", "UnmuteMic"}) {
    EXPECT_EQ(Answer(getter), "<void>") << getter;
  }
  for (const char* setter :
       {"setPhoneVolume", "setMediaVolume", "setMicVolume", "setBrightness", "setContrast"}) {
    EXPECT_EQ(Answer(setter, {N(5)}), "<void>") << setter;
  }
  EXPECT_EQ(Answer("setDimMode", {S("true")}), "<void>");
  for (int32_t kind : {1, 2, 3}) ZQUtil::AsyncConfigWrite(kind);
  Settle();
  singleton.audioVolume = volumes;
  singleton.screen = screen;
  EXPECT_EQ(Answer("getPhoneVolume"), "75");
  EXPECT_EQ(Answer("getDimMode"), "FALSE");
}

TEST(ContrastScale, MapsEveryBoardValueToItsStep) {
  std::string steps;
  for (int32_t board = 14; board <= 31; ++board) steps += std::to_string(ContrastStepOfBoard(board)) + " ";
  EXPECT_EQ(steps, "10 10 1 2 2 3 4 4 5 5 6 6 7 7 8 9 10 10 ");
}

TEST(ContrastScale, MapsEveryStepToItsBoardValue) {
  std::string boards;
  for (int32_t step = -1; step <= 12; ++step) boards += std::to_string(ContrastBoardOfStep(step)) + " ";
  EXPECT_EQ(boards, "30 16 16 17 19 21 23 25 27 28 29 30 30 30 ");
}

TEST_F(VolumesAndScreenTest, TheFirstTimeMarkerIsNoUntilItIsSet) {
  EXPECT_EQ(Answer("getFirstTime"), "No");
  EXPECT_EQ(Set("setFirstTime", S("done"), "isTablet"), "no");
  Settle();
  EXPECT_EQ(Answer("getFirstTime"), "done");
  const ClosedKeyStore closed;
  EXPECT_EQ(Answer("getFirstTime"), "<returned 0>");
}

}  // namespace
