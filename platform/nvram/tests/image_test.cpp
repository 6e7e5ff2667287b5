// The bytes of a copy.
#include <gtest/gtest.h>

#include <cstring>

#include "copy_image.h"

namespace {

const Entries kTwo = {{"a", "1"}, {"b", ""}};

TEST(Image, HoldsTheTextsAfterTheHeaderAndZeroesBehindThem) {
  const Bytes image = BuildImage(kTwo, "", 24, true, 7).value();
  EXPECT_EQ(image.size(), 24U);
  EXPECT_EQ(image[4], 7);
  EXPECT_EQ(std::string(image.begin() + 5, image.end()), std::string("a=1\0b=\0\0\0\0\0\0\0\0\0\0\0\0", 19));
  EXPECT_TRUE(IsWhole(image, true));
  EXPECT_TRUE(IsReadable(image, true));
}

TEST(Image, OfOneCopyHasNoCounter) {
  const Bytes image = BuildImage(kTwo, "", 24, false, 7).value();
  EXPECT_EQ(std::string(image.begin() + 4, image.begin() + 8), std::string("a=1\0", 4));
  EXPECT_TRUE(IsWhole(image, false));
  EXPECT_EQ(Counter(image, false), 0);
}

TEST(Image, ChecksumIsTheCrc32OfTheData) {
  const Bytes image = EmptyImage(16, true, 0);
  uint32_t checksum = 0;
  std::memcpy(&checksum, image.data(), sizeof checksum);
  EXPECT_EQ(checksum, 0x6b87b1ecU);
}

TEST(Image, FitsToTheLastByteAndNoFurther) {
  // Header 5, "a=1" and "b=" with their ends 7, the empty text 1.
  EXPECT_TRUE(BuildImage(kTwo, "", 13, true, 0));
  EXPECT_FALSE(BuildImage(kTwo, "", 12, true, 0));
  EXPECT_TRUE(IsReadable(*BuildImage(kTwo, "", 13, true, 0), true));
}

TEST(Image, IsNotWholeAfterAnyFlipButOneOfTheCounter) {
  const Bytes good = BuildImage(kTwo, "", 24, true, 7).value();
  for (size_t byte = 0; byte < good.size(); ++byte) {
    for (int bit = 0; bit < 8; ++bit) {
      Bytes flipped = good;
      flipped[byte] = static_cast<uint8_t>(flipped[byte] ^ (1U << bit));
      EXPECT_EQ(IsWhole(flipped, true), byte == 4) << byte;
    }
  }
}

TEST(Image, WithoutAnEmptyTextAtTheEndIsNotReadable) {
  Bytes image = BuildImage(kTwo, "", 24, true, 7).value();
  std::fill(image.begin() + 5, image.end(), 'x');
  EXPECT_FALSE(IsReadable(image, true));
  image.back() = 0;
  EXPECT_FALSE(IsReadable(image, true));
  image[image.size() - 2] = 0;
  EXPECT_TRUE(IsReadable(image, true));
}

TEST(Image, OfAHeaderOrLessIsNeitherWholeNorReadable) {
  for (size_t size = 0; size <= 5; ++size) {
    EXPECT_FALSE(IsWhole(Bytes(size), true));
    EXPECT_FALSE(IsReadable(Bytes(size), true));
  }
}

TEST(Image, WithTwoTextsOfFlagsIsNotReadable) {
  EXPECT_TRUE(IsReadable(*BuildImage({{".flags", "a:s"}}, "", 40, true, 0), true));
  EXPECT_FALSE(IsReadable(*BuildImage({{".flags", "a:s"}}, ".flags=b:s", 40, true, 0), true));
}

TEST(Image, KeepsTheFlags) {
  const Bytes image = BuildImage(kTwo, ".flags=a:sr,b:da", 40, true, 7).value();
  EXPECT_EQ(FlagsText(image, true), ".flags=a:sr,b:da");
  EXPECT_EQ(FlagsText(*BuildImage(kTwo, "", 40, true, 7), true), "");
  EXPECT_FALSE(BuildImage(kTwo, ".flags=a:sr,b:da", 29, true, 7));
}

TEST(Image, FlagsOfATornTextEndWithTheImage) {
  Bytes image(20, 'x');
  const std::string text = ".flags=a:s";
  std::copy(text.begin(), text.end(), image.begin() + 5);
  EXPECT_EQ(FlagsText(image, true), text + "xxxxx");
}

TEST(NewerCopy, IsTheOneWithTheGreaterCounterAndZeroFollows255) {
  EXPECT_EQ(NewerCopy(5, 4), 0U);
  EXPECT_EQ(NewerCopy(5, 5), 0U);
  EXPECT_EQ(NewerCopy(5, 6), 1U);
  EXPECT_EQ(NewerCopy(255, 0), 1U);
  EXPECT_EQ(NewerCopy(0, 255), 0U);
  EXPECT_EQ(NewerCopy(254, 255), 1U);
  EXPECT_EQ(NewerCopy(255, 254), 0U);
}

}  // namespace
