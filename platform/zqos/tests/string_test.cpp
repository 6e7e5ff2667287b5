#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "zq_string.h"

namespace {

using String = std::unique_ptr<_ZqString, void (*)(_ZqString*)>;

String Make(size_t capacity = 0) {
  return {zq_StringCreate(capacity), &zq_StringDestroy};
}

std::string Bytes(const String& string) {
  return {zq_StringText(string.get()), zq_StringLength(string.get())};
}

TEST(String, BeginsEmpty) {
  const String string = Make(64);
  ASSERT_NE(string, nullptr);
  EXPECT_EQ(zq_StringLength(string.get()), 0U);
  EXPECT_STREQ(zq_StringText(string.get()), "");
}

TEST(String, GrowsPastItsFirstCapacity) {
  const String string = Make(4);
  std::string expected;
  for (int i = 0; i < 10000; ++i) {
    ASSERT_TRUE(zq_StringAppend(string.get(), "line "));
    expected += "line ";
  }
  EXPECT_EQ(Bytes(string), expected);
}

TEST(String, KeepsBytesThatAreNoText) {
  const String string = Make();
  const char bytes[] = {'a', '\0', '\xFF', '\xFE', '\n'};
  ASSERT_TRUE(zq_StringAppendBytes(string.get(), bytes, sizeof bytes));
  ASSERT_TRUE(zq_StringAppend(string.get(), "\xFFz"));
  EXPECT_EQ(Bytes(string), std::string(bytes, sizeof bytes) + "\xFFz");
  EXPECT_EQ(zq_StringText(string.get())[zq_StringLength(string.get())], '\0');
}

TEST(String, AppendsItself) {
  const String string = Make();
  zq_StringAppend(string.get(), "0123456789abcdef");
  for (int i = 0; i < 6; ++i) ASSERT_TRUE(zq_StringAppend(string.get(), zq_StringText(string.get())));
  EXPECT_EQ(zq_StringLength(string.get()), 16U << 6);
  EXPECT_EQ(Bytes(string).substr(1008), "0123456789abcdef");
}

TEST(String, ResetMakesItEmptyAndUsable) {
  const String string = Make();
  zq_StringAppend(string.get(), "before");
  zq_StringReset(string.get());
  EXPECT_STREQ(zq_StringText(string.get()), "");
  zq_StringAppend(string.get(), "after");
  EXPECT_EQ(Bytes(string), "after");
}

TEST(String, NullTextIsRefusedAndChangesNothing) {
  const String string = Make();
  zq_StringAppend(string.get(), "kept");
  EXPECT_FALSE(zq_StringAppend(string.get(), nullptr));
  EXPECT_FALSE(zq_StringAppendBytes(string.get(), nullptr, 3));
  EXPECT_TRUE(zq_StringAppendBytes(string.get(), nullptr, 0));
  EXPECT_EQ(Bytes(string), "kept");
}

TEST(String, ACapacityBeyondAllMemoryGivesNull) {
  EXPECT_EQ(zq_StringCreate(SIZE_MAX), nullptr);
}

TEST(String, AppendingMoreThanMemoryHoldsIsRefusedAndChangesNothing) {
  const String string = Make();
  zq_StringAppend(string.get(), "kept");
  EXPECT_FALSE(zq_StringAppendBytes(string.get(), "x", SIZE_MAX - 1));
  EXPECT_EQ(Bytes(string), "kept");
}

TEST(String, NullIsAnEmptyStringThatTakesNothing) {
  EXPECT_FALSE(zq_StringAppend(nullptr, "x"));
  EXPECT_FALSE(zq_StringAppendBytes(nullptr, "x", 1));
  EXPECT_EQ(zq_StringLength(nullptr), 0U);
  EXPECT_STREQ(zq_StringText(nullptr), "");
  zq_StringReset(nullptr);
  zq_StringDestroy(nullptr);
}

}  // namespace
