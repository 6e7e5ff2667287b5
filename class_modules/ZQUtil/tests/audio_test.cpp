// The module and the sound card's mixer, over the real sound library.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <tuple>
#include <vector>

#include "audio_volume.h"
#include "module_fixture.h"
#include "native_audio.h"
#include "sound_calls.h"
#include "zq_ini.h"

namespace fs = std::filesystem;

namespace {

constexpr char kVolume[] = "Master Playback Volume";
constexpr char kSwitch[] = "Master Playback Switch";
constexpr char kCapture[] = "Capture Volume";

std::string MixerFile() {
  return OnThisMachine("/hw/mixer.ini");
}

// What the card's file says.
std::string Card(const char* element, const char* key = "value") {
  char text[129] = {};
  zq_GetINIFileString(element, key, "none", text, 128, MixerFile().c_str());
  return text;
}

// What the person at the device does.
void SetCard(const char* element, const char* key, const std::string& value) {
  ASSERT_TRUE(zq_WriteINIFileString(element, key, value.c_str(), MixerFile().c_str(), false));
}

std::string Element(const char* name, const std::string& type, const std::string& maximum,
                    const std::string& value) {
  return "[" + std::string(name) + "]\ntype=" + type + "\nmin=0\nmax=" + maximum + "\nvalue=" + value + "\n";
}

std::string VolumeElement(const std::string& type = "integer", const std::string& maximum = "100") {
  return Element(kVolume, type, maximum, "1,1");
}
const std::string kSwitchElement = Element(kSwitch, "boolean", "1", "0,0");
const std::string kCaptureElement = Element(kCapture, "integer", "15", "0,0");

class AudioTest : public ModuleTest {
 protected:
  AudioTest() {
    ForgetCard();
    WriteFile(MixerFile(), VolumeElement() + kSwitchElement + kCaptureElement);
    TakeSoundCalls();
  }
  ~AudioTest() override {
    Unload();
    ForgetCard();
  }

  // As in a process that has just started.
  static void ForgetCard() {
    if (alsaCtl != nullptr) snd_ctl_close(alsaCtl);
    alsaCtl = nullptr;
  }
  // What plays: volume, switch, capture.
  static std::string Mixer() { return Card(kVolume) + " " + Card(kSwitch) + " " + Card(kCapture); }

  Object& Start(const std::string& settings) {
    WriteFile("zqutil.ini", "[config]\n" + settings);
    return New();
  }
};

TEST_F(AudioTest, TheStartAsksTheCardOnceInThisOrder) {
  New();
  EXPECT_EQ(TakeSoundCalls(),
            "open hw:0 2\n"
            "info MIXER Master Playback Volume 0\n"
            "write MIXER Master Playback Volume 0 75,75\n"
            "write MIXER Master Playback Switch 0 1,1\n"
            "write MIXER Capture Volume 0 7,7\n");
  EXPECT_EQ(Mixer(), "75,75 1,1 7,7");
}

TEST_F(AudioTest, AStartWithTheHighestMediaVolumePlaysAt95Percent) {
  Start("mediaVolume=100\n");
  EXPECT_EQ(Mixer(), "95,95 1,1 7,7");
}

TEST_F(AudioTest, EachMediaVolumeIsItsShareOfTheCardsMaximumUpTo95Percent) {
  for (const int maximum : {1, 31, 63, 100, 65535}) {
    SetCard(kVolume, "max", std::to_string(maximum));
    for (int media = 0; media <= 100; ++media) {
      SetCard(kVolume, "value", "1,1");
      const ZQAudioVolume volumes(true, media, 20, 50);
      const std::string share = std::to_string(std::min(media, 95) * maximum / 100);
      ASSERT_EQ(Mixer(), share + "," + share + " 1,1 7,7") << media << " of " << maximum;
    }
  }
}

TEST_F(AudioTest, AVolumeBelow0IsTheCardsToRefuse) {
  Start("mediaVolume=-50\n");
  EXPECT_NE(TakeSoundCalls().find("write MIXER Master Playback Volume 0 -50,-50\n"), std::string::npos);
  EXPECT_EQ(Mixer(), "1,1 1,1 7,7");
}

// volume, its copy, micVolume: three words in this order.
TEST_F(AudioTest, TheCopyIsSetWithTheVolume) {
  ZQAudioVolume volumes(false, 60, 20, 40);
  const auto fields = [&volumes] {
    static_assert(sizeof volumes == 3 * sizeof(int32_t));
    int32_t words[3];
    std::memcpy(words, static_cast<const void*>(&volumes), sizeof words);
    return std::to_string(words[0]) + " " + std::to_string(words[1]) + " " + std::to_string(words[2]);
  };
  EXPECT_EQ(fields(), "60 60 40");
  volumes.setPhoneVolume(1);
  EXPECT_EQ(fields(), "1 1 40");
  volumes.setMediaVolume(2);
  EXPECT_EQ(fields(), "2 2 40");
  volumes.setMicVolume(3);
  EXPECT_EQ(fields(), "2 2 3");
}

TEST_F(AudioTest, WithoutInitialisingTheMixerIsLeftAlone) {
  const ZQAudioVolume volumes(false, 60, 20, 40);
  EXPECT_EQ(volumes.getMediaVolume(), 60);
  EXPECT_EQ(volumes.getPhoneVolume(), 60);
  EXPECT_EQ(volumes.getMicVolume(), 40);
  EXPECT_EQ(TakeSoundCalls(), "");
  EXPECT_EQ(alsaCtl, nullptr);
}

TEST_F(AudioTest, LaterVolumesAndMutesLeaveTheMixerAlone) {
  Object& util = New();
  Settle();
  TakeSoundCalls();
  SetCard(kSwitch, "value", "0,1");
  for (const char* setter : {"setPhoneVolume", "setMediaVolume", "setMicVolume"}) {
    EXPECT_EQ(engine.Answer(util, setter, {N(30)}), "<void>");
  }
  for (const char* mute : {"MutePhone", "UnmutePhone", "MuteMic", "UnmuteMic"}) {
    EXPECT_EQ(engine.Answer(util, mute), "<void>");
  }
  Settle();
  EXPECT_EQ(TakeSoundCalls(), "");
  EXPECT_EQ(Mixer(), "75,75 0,1 7,7");
  EXPECT_EQ(StoredSetting("mediaVolume"), "30");
}

TEST_F(AudioTest, TheMediaVolumeIsThePhoneVolumeTooAndBothAreSavedSo) {
  Object& util = Start("phoneVolume=20\nmediaVolume=75\nmicVolume=33\n");
  EXPECT_EQ(engine.Answer(util, "getPhoneVolume"), "75");
  EXPECT_EQ(engine.Answer(util, "getMediaVolume"), "75");
  EXPECT_TRUE(trace.Has("ZQUtil Audio initialized to 75 20 33"));
  Settle();
  EXPECT_EQ(StoredSetting("phoneVolume"), "75");
  EXPECT_EQ(StoredSetting("mediaVolume"), "75");
  EXPECT_EQ(StoredSetting("micVolume"), "33");
  EXPECT_EQ(Card(kCapture), "7,7") << "the microphone volume is none of the card's business";
}

TEST_F(AudioTest, TheNextStartTakesTheSavedVolumes) {
  Object& util = New();
  engine.Answer(util, "setPhoneVolume", {N(150)});
  engine.Answer(util, "setMicVolume", {N(-5)});
  Settle();
  const std::string saved = ReadFile("zqutil.ini");
  EXPECT_LT(saved.find("phoneVolume"), saved.find("mediaVolume"));
  EXPECT_LT(saved.find("mediaVolume"), saved.find("micVolume"));
  Unload();
  EXPECT_EQ(Mixer(), "75,75 1,1 7,7");
  Object& next = New();
  EXPECT_EQ(Mixer(), "95,95 1,1 7,7");
  EXPECT_EQ(engine.Answer(next, "getMediaVolume"), "100");
  EXPECT_EQ(engine.Answer(next, "getMicVolume"), "0");
}

TEST_F(AudioTest, ASecondSingletonReusesTheOpenCard) {
  Drop(New());
  snd_ctl_t* const first = alsaCtl;
  ASSERT_NE(first, nullptr) << "open beyond the object's end";
  SetCard(kVolume, "value", "3,3");
  SetCard(kSwitch, "value", "0,0");
  TakeSoundCalls();
  New();
  EXPECT_EQ(alsaCtl, first);
  EXPECT_EQ(TakeSoundCalls().find("open"), std::string::npos);
  EXPECT_EQ(Mixer(), "75,75 1,1 7,7");
}

TEST_F(AudioTest, WithoutACardEverythingElseGoesOn) {
  fs::remove(MixerFile());
  Object& util = Start("mediaVolume=40\n");
  EXPECT_EQ(TakeSoundCalls(), "open hw:0 2\n");
  EXPECT_EQ(alsaCtl, nullptr);
  native_set_speaker_level(true, 50);
  EXPECT_EQ(TakeSoundCalls(), "");
  EXPECT_EQ(engine.Answer(util, "getMediaVolume"), "40");
  engine.Answer(util, "setPhoneVolume", {N(41)});
  EXPECT_EQ(engine.Answer(util, "getMediaVolume"), "41");
  Settle();
  EXPECT_EQ(StoredSetting("mediaVolume"), "41");
  EXPECT_FALSE(fs::exists(MixerFile()));
}

TEST_F(AudioTest, ACardThatAppearsIsFoundByTheNextSingleton) {
  SetCard("card", "present", "no");
  Drop(New());
  EXPECT_EQ(alsaCtl, nullptr);
  EXPECT_EQ(Mixer(), "1,1 0,0 0,0");
  SetCard("card", "present", "yes");
  native_set_speaker_level(true, 50);
  EXPECT_EQ(Mixer(), "1,1 0,0 0,0") << "only a start looks for it";
  New();
  EXPECT_NE(alsaCtl, nullptr);
  EXPECT_EQ(Mixer(), "75,75 1,1 7,7");
}

TEST_F(AudioTest, ACardThatGoesAwayTakesNothingWithIt) {
  Drop(New());
  fs::remove(MixerFile());
  Object& util = New();
  native_set_speaker_level(true, 50);
  EXPECT_EQ(engine.Answer(util, "getMediaVolume"), "75");
  EXPECT_FALSE(fs::exists(MixerFile()));
}

TEST_F(AudioTest, AMissingElementLeavesTheOthersSet) {
  WriteFile(MixerFile(), kSwitchElement + kCaptureElement);
  New();
  EXPECT_EQ(TakeSoundCalls(),
            "open hw:0 2\ninfo MIXER Master Playback Volume 0\n"
            "write MIXER Master Playback Volume 0 0,0\nwrite MIXER Master Playback Switch 0 1,1\n"
            "write MIXER Capture Volume 0 7,7\n");
  EXPECT_EQ(Mixer(), "none 1,1 7,7");
  Unload();
  WriteFile(MixerFile(), VolumeElement() + kCaptureElement);
  New();
  EXPECT_EQ(Mixer(), "75,75 none 7,7");
  Unload();
  WriteFile(MixerFile(), VolumeElement() + kSwitchElement);
  New();
  EXPECT_EQ(Mixer(), "75,75 1,1 none");
}

TEST_F(AudioTest, A64BitVolumeIsSetByTheLowHalfOfItsMaximum) {
  for (const auto& [maximum, value] : std::vector<std::pair<std::string, std::string>>{
           {"100", "75,75"}, {"4294967396", "75,75"}, {"2147483647", "21474835,21474835"}}) {
    WriteFile(MixerFile(), VolumeElement("integer64", maximum) + kSwitchElement + kCaptureElement);
    const ZQAudioVolume volumes(true, 75, 75, 50);
    EXPECT_EQ(Mixer(), value + " 1,1 7,7") << maximum;
  }
}

// 75 percent of the low half, in 32 bits.
TEST_F(AudioTest, AMaximumThatLeaves32BitsWrapsAndTheCardMayRefuse) {
  for (const auto& [type, maximum, asked] : std::vector<std::tuple<std::string, std::string, std::string>>{
           {"integer", "2147483647", "21474835,21474835"},
           {"integer64", "4294967295", "0,0"},
           {"integer64", "3000000000", "16617006,16617006"},
           {"integer64", "4294967096", "-150,-150"},
           {"integer64", "9223372036854775807", "0,0"}}) {
    WriteFile(MixerFile(), VolumeElement(type, maximum) + kSwitchElement + kCaptureElement);
    TakeSoundCalls();
    const ZQAudioVolume volumes(true, 75, 75, 50);
    // The record shows values as longs, which a 32-bit program's are too short for.
    if (type == "integer" || sizeof(long) == 8) {
      EXPECT_NE(TakeSoundCalls().find("write MIXER Master Playback Volume 0 " + asked + "\n"),
                std::string::npos)
          << maximum;
    }
    EXPECT_EQ(Mixer(), (asked[0] == '-' ? "1,1" : asked) + " 1,1 7,7") << maximum;
  }
}

TEST_F(AudioTest, AVolumeOfAnotherTypeIsSetTo0) {
  for (const char* type : {"boolean", "enumerated", "bytes"}) {
    WriteFile(MixerFile(), VolumeElement(type) + kSwitchElement + kCaptureElement);
    const ZQAudioVolume volumes(true, 75, 75, 50);
    EXPECT_EQ(Mixer(), "0,0 1,1 7,7") << type;
  }
}

TEST_F(AudioTest, TheFlagOfASpeakerLevelHasNoMeaning) {
  New();
  native_set_speaker_level(false, 20);
  EXPECT_EQ(Mixer(), "20,20 1,1 7,7");
  native_set_speaker_level(true, 96);
  EXPECT_EQ(Mixer(), "95,95 1,1 7,7");
}

}  // namespace
