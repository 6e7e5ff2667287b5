// The simulated sound card as a program on the device meets it through the sound library.
#include <alsa/asoundlib.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "temp_dir.h"

namespace {

std::string MixerFile() {
  return std::getenv("ZQ_DEVICE") + std::string("/hw/mixer.ini");
}

void SetCard(const std::string& text) {
  WriteFile(MixerFile(), text);
}

int OpenCard(const char* name) {
  snd_ctl_t* card = nullptr;
  const int result = snd_ctl_open(&card, name, 0);
  if (result == 0) snd_ctl_close(card);
  return result;
}

constexpr char kWholeCard[] =
    "[Master Playback Volume]\ntype=integer\nmin=-4\nmax=31\nvalue=23,24\n"
    "[Master Playback Switch]\ntype=boolean\nvalue=1,0\n"
    "[Capture Volume]\ntype=enumerated\nmax=2\nvalue=2\n";

class MixerTest : public testing::Test {
 protected:
  MixerTest() {
    SetCard(kWholeCard);
    EXPECT_EQ(snd_ctl_open(&card_, "hw:0", 0), 0);
    snd_ctl_elem_id_malloc(&id_);
    snd_ctl_elem_info_malloc(&info_);
    snd_ctl_elem_value_malloc(&value_);
  }
  ~MixerTest() override {
    snd_ctl_elem_value_free(value_);
    snd_ctl_elem_info_free(info_);
    snd_ctl_elem_id_free(id_);
    snd_ctl_close(card_);
  }

  void Name(const char* name, unsigned int index = 0) {
    snd_ctl_elem_id_clear(id_);
    snd_ctl_elem_id_set_interface(id_, SND_CTL_ELEM_IFACE_MIXER);
    snd_ctl_elem_id_set_name(id_, name);
    snd_ctl_elem_id_set_index(id_, index);
  }
  int Describe(const char* name, unsigned int index = 0) {
    Name(name, index);
    snd_ctl_elem_info_set_id(info_, id_);
    return snd_ctl_elem_info(card_, info_);
  }
  int Read(const char* name) {
    Name(name);
    snd_ctl_elem_value_clear(value_);
    snd_ctl_elem_value_set_id(value_, id_);
    return snd_ctl_elem_read(card_, value_);
  }
  int Write(const char* name, long left, long right) {
    Name(name);
    snd_ctl_elem_value_clear(value_);
    snd_ctl_elem_value_set_id(value_, id_);
    snd_ctl_elem_value_set_integer(value_, 0, left);
    snd_ctl_elem_value_set_integer(value_, 1, right);
    return snd_ctl_elem_write(card_, value_);
  }
  std::string Numbers() const {
    return std::to_string(snd_ctl_elem_value_get_integer(value_, 0)) + "," +
           std::to_string(snd_ctl_elem_value_get_integer(value_, 1));
  }
  // The names of all elements, a comma behind each.
  std::string List() {
    snd_ctl_elem_list_t* list = nullptr;
    snd_ctl_elem_list_malloc(&list);
    snd_ctl_elem_list_alloc_space(list, 10);
    EXPECT_EQ(snd_ctl_elem_list(card_, list), 0);
    std::string names;
    for (unsigned int i = 0; i < snd_ctl_elem_list_get_used(list); ++i) {
      names += std::string(snd_ctl_elem_list_get_name(list, i)) + ",";
    }
    snd_ctl_elem_list_free_space(list);
    snd_ctl_elem_list_free(list);
    return names;
  }

  snd_ctl_t* card_ = nullptr;
  snd_ctl_elem_id_t* id_ = nullptr;
  snd_ctl_elem_info_t* info_ = nullptr;
  snd_ctl_elem_value_t* value_ = nullptr;
};

TEST_F(MixerTest, ListsWhatTheCardHasAtThisMoment) {
  EXPECT_EQ(List(), "Master Playback Volume,Master Playback Switch,Capture Volume,");
  SetCard("[Capture Volume]\ntype=bytes\n[Master Playback Switch]\ntype=none\n[Bass]\ntype=integer\n");
  EXPECT_EQ(List(), "Capture Volume,");
}

TEST_F(MixerTest, DescribesItsElements) {
  ASSERT_EQ(Describe("Master Playback Volume"), 0);
  EXPECT_EQ(snd_ctl_elem_info_get_type(info_), SND_CTL_ELEM_TYPE_INTEGER);
  EXPECT_EQ(snd_ctl_elem_info_get_min(info_), -4);
  EXPECT_EQ(snd_ctl_elem_info_get_max(info_), 31);
  EXPECT_EQ(snd_ctl_elem_info_get_count(info_), 2U);
  ASSERT_EQ(Describe("Capture Volume"), 0);
  EXPECT_EQ(snd_ctl_elem_info_get_type(info_), SND_CTL_ELEM_TYPE_ENUMERATED);
  EXPECT_EQ(snd_ctl_elem_info_get_items(info_), 3U);
  EXPECT_EQ(Describe("Bass"), -ENOENT);
  EXPECT_EQ(Describe("Capture Volume", 1), -ENOENT);
}

TEST_F(MixerTest, ReadsWhatThePersonWroteAndThePersonReadsWhatItWrites) {
  ASSERT_EQ(Read("Master Playback Volume"), 0);
  EXPECT_EQ(Numbers(), "23,24");
  std::string text = kWholeCard;
  text.replace(text.find("23,24"), 5, "-1,31");
  SetCard(text);
  ASSERT_EQ(Read("Master Playback Volume"), 0);
  EXPECT_EQ(Numbers(), "-1,31");
  EXPECT_GE(Write("Master Playback Volume", 7, 8), 0);
  ASSERT_EQ(Read("Master Playback Volume"), 0);
  EXPECT_EQ(Numbers(), "7,8");
  EXPECT_NE(ReadFile(MixerFile()).find("7,8"), std::string::npos);
}

// Whatever the plugin keeps of a file that it has read while nobody changed it for a while.
TEST_F(MixerTest, ReadsWhatThePersonChangesAfterALongRest) {
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  ASSERT_EQ(Read("Master Playback Volume"), 0);
  EXPECT_EQ(Numbers(), "23,24");
  for (const char* values : {"25,26", "27,28"}) {
    std::string text = kWholeCard;
    SetCard(text.replace(text.find("23,24"), 5, values));
    ASSERT_EQ(Read("Master Playback Volume"), 0);
    EXPECT_EQ(Numbers(), values);
  }
  ASSERT_EQ(Write("Master Playback Volume", 29, 30), 1);
  ASSERT_EQ(Read("Master Playback Volume"), 0);
  EXPECT_EQ(Numbers(), "29,30");
}

TEST_F(MixerTest, RefusesAValueOutsideTheRangeAndKeepsTheOldOne) {
  EXPECT_EQ(Write("Master Playback Volume", 32, 0), -EINVAL);
  EXPECT_EQ(Write("Master Playback Volume", 0, -5), -EINVAL);
  EXPECT_EQ(Write("Master Playback Switch", 2, 0), -EINVAL);
  EXPECT_EQ(Write("Bass", 1, 1), -ENOENT);
  EXPECT_EQ(ReadFile(MixerFile()), kWholeCard);
}

TEST_F(MixerTest, KeepsThePersonsCommentsWhenItWrites) {
  SetCard("; mine\n" + std::string(kWholeCard));
  EXPECT_GE(Write("Master Playback Switch", 0, 1), 0);
  const std::string text = ReadFile(MixerFile());
  EXPECT_TRUE(text.starts_with("; mine\n[Master Playback Volume]\n")) << text;
}

TEST_F(MixerTest, AnOpenCardThatGoesHasNoElements) {
  SetCard("[card]\npresent=no\n" + std::string(kWholeCard));
  EXPECT_EQ(List(), "");
  EXPECT_EQ(Read("Capture Volume"), -ENOENT);
  std::filesystem::remove(MixerFile());
  EXPECT_EQ(Write("Master Playback Volume", 1, 1), -ENOENT);
  EXPECT_FALSE(std::filesystem::exists(MixerFile()));
}

TEST(MixerCard, IsTheFirstAndOnly) {
  SetCard(kWholeCard);
  EXPECT_EQ(OpenCard("hw:0"), 0);
  EXPECT_EQ(OpenCard("hw"), 0);
  EXPECT_EQ(OpenCard("default"), 0);
  EXPECT_EQ(OpenCard("hw:1"), -ENODEV);
}

TEST(MixerCard, IsMissingWithoutItsFileOrWhenTheFileSaysSo) {
  std::filesystem::remove(MixerFile());
  EXPECT_EQ(OpenCard("hw:0"), -ENODEV);
  SetCard("");
  EXPECT_EQ(OpenCard("hw:0"), 0) << "a card without elements";
  SetCard("[card]\npresent = no\n");
  EXPECT_EQ(OpenCard("hw:0"), -ENODEV);
}

}  // namespace
