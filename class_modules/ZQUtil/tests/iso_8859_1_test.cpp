#include "iso_8859_1.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace {

struct Result {
  uint32_t count;
  std::string buffer;  // whole, with its filling of '?'
};

Result Convert(const std::string& source, uint32_t size, bool keepCData = false, size_t room = 64) {
  std::string buffer(room, '?');
  const uint32_t count =
      iso_8859_1s_to_utf8s(reinterpret_cast<unsigned char*>(buffer.data()),
                           reinterpret_cast<const unsigned char*>(source.c_str()), size, keepCData);
  return {count, buffer};
}

// The rule, byte by byte.
Result Plainly(const std::string& source, uint32_t size, size_t room) {
  std::string buffer(room, '?');
  uint32_t count = 0;
  for (const char character : source) {
    const auto c = static_cast<unsigned char>(character);
    if (c >= 0x80) {
      if (size <= count + 1) return {count, buffer};
      buffer[count] = static_cast<char>((c >> 6) | 0xC0);
      buffer[count + 1] = static_cast<char>((c & 0x3F) | 0x80);
      count += 2;
    } else {
      if (count >= size) return {count, buffer};
      buffer[count++] = character;
    }
  }
  if (size > count) buffer[count] = '\0';
  return {count, buffer};
}

TEST(Iso88591, StoresNoNulInAFullBuffer) {
  const Result result = Convert("a\xE9", 3);
  EXPECT_EQ(result.count, 3U);
  EXPECT_EQ(result.buffer.substr(0, 4), "a\xC3\xA9?");
}

TEST(Iso88591, StopsBeforeAPairThatDoesNotFit) {
  const Result result = Convert("a\xE9", 2);
  EXPECT_EQ(result.count, 1U);
  EXPECT_EQ(result.buffer.substr(0, 3), "a??");
}

TEST(Iso88591, EndsWithANulWhereThereIsRoom) {
  EXPECT_EQ(Convert("a\xE9", 4).buffer.substr(0, 4), std::string("a\xC3\xA9\0", 4));
  EXPECT_EQ(Convert("", 4).buffer.substr(0, 2), std::string("\0?", 2));
  EXPECT_EQ(Convert("", 4).count, 0U);
}

TEST(Iso88591, WritesNothingForASizeOfZero) {
  const Result result = Convert("a\xE9", 0);
  EXPECT_EQ(result.count, 3U);
  EXPECT_EQ(result.buffer, std::string(64, '?'));
  EXPECT_EQ(Convert("", 0).buffer, std::string(64, '?'));
}

TEST(Iso88591, TellsTheLengthWithoutADestination) {
  const auto length = [](const char* text) {
    return iso_8859_1s_to_utf8s(nullptr, reinterpret_cast<const unsigned char*>(text), 100, false);
  };
  EXPECT_EQ(length(""), 0U);
  EXPECT_EQ(length("abc"), 3U);
  EXPECT_EQ(length("\xE9\x80\xFF"), 6U);
  EXPECT_EQ(length("0123456789\xE9 0123456789 \xE9"), 25U + 1U);
}

TEST(Iso88591, KeepsACDataSectionAsItIs) {
  const Result result = Convert("\xE9<![CDATA[\xE9]]>\xE9", 60, true);
  EXPECT_EQ(result.buffer.substr(0, result.count), "\xC3\xA9<![CDATA[\xE9]]>\xC3\xA9");
}

TEST(Iso88591, KeepsEachOfTwoSections) {
  const Result result = Convert("![CDATA[\xE9]]\xE9![CDATA[\xE8]]", 60, true);
  EXPECT_EQ(result.buffer.substr(0, result.count), "![CDATA[\xE9]]\xC3\xA9![CDATA[\xE8]]");
}

TEST(Iso88591, ConvertsASectionThatNeverEndsOrThatNobodyWantsKept) {
  EXPECT_EQ(Convert("![CDATA[\xE9]", 60, true).count, 11U);
  EXPECT_EQ(Convert("![CDATA[\xE9]]", 60, false).count, 12U);
  EXPECT_EQ(Convert("![CDATA[", 60, true).count, 8U) << "nine bytes must be left";
}

TEST(Iso88591, CopiesASectionWholeWhateverTheSize) {
  const Result result = Convert("ab![CDATA[\xE9]]c", 3, true);
  EXPECT_EQ(result.count, 13U);
  EXPECT_EQ(result.buffer.substr(0, 14), "ab![CDATA[\xE9]]?") << "what follows the full buffer is not stored";
}

TEST(Iso88591, AgreesWithTheRuleForEverySizeOfManyTexts) {
  std::mt19937 random(1);
  for (int round = 0; round < 400; ++round) {
    std::string source(random() % 40, '\0');
    const unsigned highness = random() % 5;  // from none to all
    for (char& c : source) {
      const bool high = random() % 4 < highness;
      c = static_cast<char>(high ? 0x80 + random() % 128 : 1 + random() % 127);
    }
    for (uint32_t size = 1; size <= 2 * source.size() + 2; ++size) {
      const Result got = Convert(source, size, false, 96);
      const Result rule = Plainly(source, size, 96);
      ASSERT_EQ(got.count, rule.count) << "size " << size;
      ASSERT_EQ(got.buffer.substr(0, got.count), rule.buffer.substr(0, rule.count));
      ASSERT_EQ(got.buffer[got.count], rule.buffer[rule.count]) << "the NUL, or what was there";
      ASSERT_EQ(got.buffer.substr(size), rule.buffer.substr(size)) << "nothing beyond the size";
    }
  }
}

}  // namespace
