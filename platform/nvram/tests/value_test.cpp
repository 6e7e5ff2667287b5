// Which texts come back as they were.
#include "nvram_fixture.h"

namespace {

class NvramValueTest : public NvramTest {};

TEST_F(NvramValueTest, AnyTextComesBackByteForByte) {
  std::string everyByte;
  for (int byte = 1; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  for (const std::string& value :
       {std::string(), std::string(" "), std::string("a=b=c"), std::string("two\nlines\r\n"),
        std::string("Grüße ☂"), std::string("\xff\xfe"), std::string(128, 'x'), std::string(3000, 'y'),
        everyByte, std::string("\\0"), std::string("'\"$`")}) {
    EXPECT_EQ(Put("key", value), 0);
    EXPECT_EQ(Value("key"), value);
  }
}

TEST_F(NvramValueTest, AnEmptyValueIsAValue) {
  Put("key", "");
  EXPECT_EQ(Value("key"), "");
  Put("key", "x");
  Put("key", "");
  EXPECT_EQ(Value("key"), "");
}

TEST_F(NvramValueTest, KeysWithOddBytesAreKeysOfTheirOwn) {
  const std::vector<std::string> keys = {
      " ", "a b", "ü",  "\xff", "\t", "#", ".", ".flag", ".flagsx", "a:b", std::string(300, 'k'),
      "A", "a",   "-f", "0"};
  for (const std::string& key : keys) EXPECT_EQ(Put(key, "<" + key + ">"), 0) << key;
  for (const std::string& key : keys) EXPECT_EQ(Value(key), "<" + key + ">") << key;
}

// 5 bytes before the texts, "key=" and its end 5, 1 behind the last text.
constexpr size_t kMost = kCopySize - 11;

TEST_F(NvramValueTest, AValueFitsToTheLastByte) {
  const std::string most(kMost, 'm');
  EXPECT_EQ(Put("key", most), 0);
  EXPECT_EQ(Value("key"), most);
  EXPECT_EQ(Put("key", most + "m"), -1);
  EXPECT_EQ(Value("key"), most);
}

TEST_F(NvramValueTest, AFullStoreKeepsWhatItHasAndTakesWhatFitsInstead) {
  std::string filling(kMost - 10, 'm');
  EXPECT_EQ(Put("key", filling), 0);
  EXPECT_EQ(Put("x", "1234567890"), -1);
  EXPECT_EQ(Value("x"), "(missing)");
  EXPECT_EQ(Value("key"), filling);
  EXPECT_EQ(Put("x", "1234567"), 0);
  EXPECT_EQ(Put("x", "12345678"), -1);
  EXPECT_EQ(Value("x"), "1234567");
  EXPECT_EQ(Put("key", "short"), 0);
  EXPECT_EQ(Put("x", "12345678"), 0);
}

TEST_F(NvramValueTest, AFailedWriteIsNotSeenThroughTheSameHandleEither) {
  const int handle = nvram_open(0, 0);
  char buffer[8];
  ASSERT_EQ(nvram_write_key(handle, nullptr, "key", "old"), 0);
  EXPECT_EQ(nvram_write_key(handle, nullptr, "key", std::string(kCopySize, 'x').c_str()), -1);
  EXPECT_EQ(nvram_read_key(handle, nullptr, "key", buffer, sizeof buffer), 0);
  EXPECT_STREQ(buffer, "old");
  EXPECT_EQ(nvram_write_key(handle, nullptr, "new", std::string(kCopySize, 'x').c_str()), -1);
  EXPECT_EQ(nvram_read_key(handle, nullptr, "new", buffer, sizeof buffer), -1);
  EXPECT_EQ(nvram_close(handle), 0);
}

TEST_F(NvramValueTest, AValueThatIsThereAlreadyWearsNoFlash) {
  Put("key", "same");
  const std::string first = ReadFile(first_);
  const std::string second = ReadFile(second_);
  EXPECT_EQ(Put("key", "same"), 0);
  EXPECT_EQ(Erase("none"), 0);
  EXPECT_EQ(ReadFile(first_), first);
  EXPECT_EQ(ReadFile(second_), second);
}

TEST_F(NvramValueTest, ManyKeysStayApart) {
  for (int i = 0; i < 100; ++i) ASSERT_EQ(Put("key" + std::to_string(i), std::to_string(i * i)), 0);
  for (int i = 0; i < 100; i += 2) ASSERT_EQ(Erase("key" + std::to_string(i)), 0);
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(Value("key" + std::to_string(i)), i % 2 == 0 ? "(missing)" : std::to_string(i * i));
}

}  // namespace
