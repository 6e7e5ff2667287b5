// Which zone a device of an edition has.
#include <gtest/gtest.h>

#include <string>

#include "EditionZone.h"

namespace {

constexpr char kEastern[] = "/usr/share/zoneinfo/US/Eastern";

struct Row {
  const char* tag;
  const char* zone;
};
constexpr Row kRows[] = {
    {"marlowe", "/usr/share/zoneinfo/Brazil/East"},
    {"vy", "/usr/share/zoneinfo/GB"},
    {"sunward_Halvo", "/usr/share/zoneinfo/US/Central"},
    {"brisk", "/usr/share/zoneinfo/Europe/Amsterdam"},
    {"norvikflash", "/usr/share/zoneinfo/Europe/Amsterdam"},
    {"kvl", "/usr/share/zoneinfo/Europe/Amsterdam"},
    {"dunmere", "/usr/share/zoneinfo/Asia/Dubai"},
};

std::string Recased(std::string text, bool (*upper)(size_t)) {
  for (size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char>(upper(i) ? toupper(text[i]) : tolower(text[i]));
  }
  return text;
}

TEST(EditionZone, EveryTagInEveryCaseWithWhateverFollows) {
  for (const Row& row : kRows) {
    const std::string tag = row.tag;
    for (const std::string& written :
         {tag, Recased(tag, [](size_t) { return true; }), Recased(tag, [](size_t) { return false; }),
          Recased(tag, [](size_t i) { return i % 2 == 0; })}) {
      for (const char* const rest : {"", "-basic", "\n", " ", "x", "\xff", "KVL"}) {
        EXPECT_STREQ(ZoneOfEdition(written + rest), row.zone) << written + rest;
      }
    }
  }
}

TEST(EditionZone, ATagThatIsNotWholeOrNotAtTheStartIsUnknown) {
  for (const Row& row : kRows) {
    const std::string tag = row.tag;
    EXPECT_STREQ(ZoneOfEdition(tag.substr(0, tag.size() - 1)), kEastern) << tag;
    EXPECT_STREQ(ZoneOfEdition(" " + tag), kEastern) << tag;
    EXPECT_STREQ(ZoneOfEdition("x" + tag), kEastern) << tag;
    EXPECT_STREQ(ZoneOfEdition("\n" + tag), kEastern) << tag;
  }
  EXPECT_STREQ(ZoneOfEdition("sunward-Halvo"), kEastern);
}

TEST(EditionZone, AnEmptyOrOtherTextIsUnknown) {
  for (const char* const text : {"", "home-phone\n", "k", "KV", "\xc5\xbf", "\n"}) {
    EXPECT_STREQ(ZoneOfEdition(text), kEastern) << text;
  }
  EXPECT_STREQ(ZoneOfEdition(std::string(1 << 20, 'z')), kEastern);
}

}  // namespace
