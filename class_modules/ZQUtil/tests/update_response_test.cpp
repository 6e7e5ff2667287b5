// The update server's answer, sound and otherwise.
#include <gtest/gtest.h>

#include "UpdateResponse.h"

namespace {

// "device N;" and "update ID[!] COMMENT PATH;" for each, "<none>" for a text that is no answer.
std::string Show(const std::string& xml) {
  const std::optional<UpdateResponse> response = ReadUpdateResponse(xml.c_str());
  if (!response) return "<none>";
  std::string shown;
  for (const int32_t id : response->deviceIds) shown += "device " + std::to_string(id) + ";";
  for (const OfferedUpdate& update : response->updates) {
    shown += "update " + std::to_string(update.id) + (update.forced ? "! " : " ") + update.comment + " " +
             update.path + ";";
  }
  return shown;
}

TEST(UpdateResponse, ListsUpdatesAndIdentitiesInTheirOrder) {
  EXPECT_EQ(Show("<?xml version=\"1.0\"?>\n<updates><deviceid yourId=\"34\"/>"
                 "<update forced=\"true\" id=\"12\" comment=\"A &amp; B\" path=\"http://h/app-1.tgz\"/>"
                 "<update forced=\"false\" id=\"13\" comment=\"\" path=\"\"/></updates>"),
            "device 34;update 12! A & B http://h/app-1.tgz;update 13  ;");
}

TEST(UpdateResponse, TheRootsNameAndTheCaseOfElementsDoNotMatter) {
  EXPECT_EQ(Show("<x><UPDATE forced='TRUE' id='1' comment='c' path='p'/><DeviceID yourId='5'/></x>"),
            "device 5;update 1! c p;");
}

TEST(UpdateResponse, TheNamesOfAttributesMustBeExact) {
  EXPECT_EQ(Show("<x><update Forced='true' id='1' comment='c' path='p'/><deviceid yourid='5'/></x>"), "");
}

TEST(UpdateResponse, AnythingButTrueIsOptional) {
  for (const char* forced : {"", "false", "yes", "1", "truely", " true"}) {
    EXPECT_EQ(Show("<x><update forced='" + std::string(forced) + "' id='1' comment='c' path='p'/></x>"),
              "update 1 c p;")
        << forced;
  }
}

TEST(UpdateResponse, AnUpdateThatLacksAnAttributeIsLeftOut) {
  const std::string all[] = {"forced='true'", "id='1'", "comment='c'", "path='p'"};
  for (size_t missing = 0; missing < 4; ++missing) {
    std::string element = "<update";
    for (size_t i = 0; i < 4; ++i) element += i == missing ? "" : " " + all[i];
    EXPECT_EQ(Show("<x>" + element + "/><update forced='' id='2' comment='c' path='p'/></x>"),
              "update 2 c p;")
        << all[missing];
  }
}

TEST(UpdateResponse, NumbersAreReadAsFarAsTheyGo) {
  const auto id = [](const char* text) {
    return Show("<x><update forced='' id='" + std::string(text) + "' comment='c' path='p'/></x>");
  };
  EXPECT_EQ(id("7x"), "update 7 c p;");
  EXPECT_EQ(id(""), "update 0 c p;");
  EXPECT_EQ(id("-3"), "update -3 c p;");
  EXPECT_EQ(id("99999999999999999999"), "update 2147483647 c p;");
}

TEST(UpdateResponse, ADeviceIdThatIsNoNumberIsLeftOut) {
  for (const char* id : {"", "abc", "5x", "99999999999"}) {
    EXPECT_EQ(Show("<x><deviceid yourId='" + std::string(id) + "'/></x>"), "") << id;
  }
  EXPECT_EQ(Show("<x><deviceid/><deviceid yourId='0'/><deviceid yourId='-1'/></x>"), "device 0;device -1;");
}

TEST(UpdateResponse, OnlyTheRootsOwnChildrenCount) {
  EXPECT_EQ(Show("<x><y><update forced='' id='1' comment='c' path='p'/></y></x>"), "");
  EXPECT_EQ(Show("<update forced='' id='1' comment='c' path='p'/>"), "") << "it is the root";
}

TEST(UpdateResponse, AnAnswerWithoutElementsOffersNothing) {
  EXPECT_EQ(Show("<x/>"), "");
  EXPECT_EQ(Show("<x>text<other/></x>"), "");
}

TEST(UpdateResponse, WhatIsNoSoundDocumentIsNoAnswer) {
  for (const char* xml :
       {"", " ", "not XML", "<x>", "<x></y>", "<x/><x/>", "<x/>text", "text<x/>", "<x a='1' a='2'/>",
        "<x>&y;</x>", "<x>&</x>", "<!DOCTYPE x [<!ENTITY y 'z'>]><x>&y;</x>",
        "<x><update forced='true' id='1' comment='c' path='p'/>",
        "<!DOCTYPE x [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>]><x>&b;</x>",
        "<!DOCTYPE x SYSTEM 'file:///etc/passwd'><x/>", "\xFF\xFE<x/>"}) {
    EXPECT_EQ(Show(xml), "<none>") << xml;
  }
}

TEST(UpdateResponse, AHundredThousandElementsAreNoAnswer) {
  std::string xml = "<x>";
  for (int i = 0; i < 100000; ++i) xml += "<y/>";
  EXPECT_EQ(Show(xml + "</x>"), "<none>");
}

TEST(UpdateResponse, AThousandUpdatesAre) {
  std::string xml = "<x>";
  for (int i = 0; i < 1000; ++i) {
    xml += "<update forced='' id='" + std::to_string(i) + "' comment='c' path='p'/>";
  }
  const std::optional<UpdateResponse> response = ReadUpdateResponse((xml + "</x>").c_str());
  ASSERT_TRUE(response);
  ASSERT_EQ(response->updates.size(), 1000U);
  EXPECT_EQ(response->updates[999].id, 999);
}

TEST(UpdateResponse, NullIsNoAnswer) {
  EXPECT_FALSE(ReadUpdateResponse(nullptr));
}

}  // namespace
