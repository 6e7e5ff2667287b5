// Copies that a power cut, a worn cell or a careless hand left behind.
#include <functional>

#include "nvram_fixture.h"
#include "trace_capture.h"

namespace {

// The newer copy holds "key" as "new", the older one as "old"; both hold "kept".
class NvramDamageTest : public NvramTest {
 protected:
  NvramDamageTest() {
    Put("kept", "yes");
    Put("key", "old");
    Put("key", "new");
    older_ = ReadFile(first_).find("key=old") != std::string::npos ? first_ : second_;
    newer_ = older_ == first_ ? second_ : first_;
    olderBytes_ = ReadFile(older_);
    newerBytes_ = ReadFile(newer_);
  }

  // Each way a copy can be bad, by name.
  static std::vector<std::pair<std::string, std::function<void(const std::string&)>>> Damages() {
    std::vector<std::pair<std::string, std::function<void(const std::string&)>>> all;
    for (const size_t length :
         std::initializer_list<size_t>{0, 1, 3, 4, 5, 6, 100, kCopySize / 2, kCopySize - 1}) {
      all.emplace_back("cut to " + std::to_string(length),
                       [length](const std::string& path) { std::filesystem::resize_file(path, length); });
    }
    all.emplace_back("zeroed",
                     [](const std::string& path) { WriteFile(path, std::string(kCopySize, '\0')); });
    all.emplace_back("erased",
                     [](const std::string& path) { WriteFile(path, std::string(kCopySize, '\xff')); });
    all.emplace_back("missing", [](const std::string& path) { std::filesystem::remove(path); });
    // Checksum, first key, value, the zeroes behind the texts, the last byte.
    for (const size_t byte : std::initializer_list<size_t>{0, 3, 5, 9, 1000, kCopySize - 1}) {
      all.emplace_back("flipped at " + std::to_string(byte), [byte](const std::string& path) {
        std::string bytes = ReadFile(path);
        bytes[byte] = static_cast<char>(bytes[byte] ^ 0x10);
        WriteFile(path, bytes);
      });
    }
    return all;
  }

  std::string older_, newer_, olderBytes_, newerBytes_;
};

TEST_F(NvramDamageTest, ABadOlderCopyIsMendedAndCostsNothing) {
  for (const auto& [name, damage] : Damages()) {
    damage(older_);
    EXPECT_EQ(Value("key"), "new") << name;
    EXPECT_EQ(ReadFile(older_), newerBytes_) << name;
    EXPECT_EQ(ReadFile(newer_), newerBytes_) << name;
    WriteFile(older_, olderBytes_);
  }
}

TEST_F(NvramDamageTest, ABadNewerCopyIsMendedFromTheOlder) {
  for (const auto& [name, damage] : Damages()) {
    damage(newer_);
    EXPECT_EQ(Value("key"), "old") << name;
    EXPECT_EQ(Value("kept"), "yes") << name;
    EXPECT_EQ(ReadFile(newer_), olderBytes_) << name;
    WriteFile(newer_, newerBytes_);
  }
}

TEST_F(NvramDamageTest, AMendedStoreTakesWritesAndEitherCopyMayFailNext) {
  for (const auto& [name, damage] : Damages()) {
    damage(newer_);
    EXPECT_EQ(Put("key", "third"), 0) << name;
    EXPECT_EQ(Put("key", "fourth"), 0) << name;
    EXPECT_EQ(Value("key"), "fourth") << name;
    std::filesystem::remove(first_);
    EXPECT_NE(Value("key").find("th"), std::string::npos) << name;
    WriteFile(older_, olderBytes_);
    WriteFile(newer_, newerBytes_);
  }
}

TEST_F(NvramDamageTest, TwoBadCopiesAreRefusedAndLeftAsTheyAre) {
  for (const auto& [first, damageFirst] : Damages()) {
    for (const auto& [second, damageSecond] : Damages()) {
      if (first == "missing" && second == "missing") continue;
      damageFirst(first_);
      damageSecond(second_);
      const std::string firstBytes = ReadFile(first_);
      const std::string secondBytes = ReadFile(second_);
      EXPECT_EQ(Put("key", "lost"), -1) << first << ", " << second;
      EXPECT_EQ(ReadFile(first_), firstBytes) << first << ", " << second;
      EXPECT_EQ(ReadFile(second_), secondBytes) << first << ", " << second;
      WriteFile(older_, olderBytes_);
      WriteFile(newer_, newerBytes_);
    }
  }
}

TEST_F(NvramDamageTest, BothMissingIsANewStore) {
  std::filesystem::remove(first_);
  std::filesystem::remove(second_);
  EXPECT_EQ(Value("key"), "(missing)");
}

TEST_F(NvramDamageTest, SwappedCopiesAreTheSameStore) {
  WriteFile(older_, newerBytes_);
  WriteFile(newer_, olderBytes_);
  EXPECT_EQ(Value("key"), "new");
  EXPECT_EQ(Put("key", "newest"), 0);
  EXPECT_EQ(Value("key"), "newest");
}

TEST_F(NvramDamageTest, AFlippedCounterGivesOneOfTheTwoValuesWhole) {
  for (int bit = 0; bit < 8; ++bit) {
    std::string bytes = newerBytes_;
    bytes[4] = static_cast<char>(bytes[4] ^ (1 << bit));
    WriteFile(newer_, bytes);
    const std::string value = Value("key");
    EXPECT_TRUE(value == "new" || value == "old") << value;
    EXPECT_EQ(Value("kept"), "yes");
  }
}

TEST_F(NvramDamageTest, BytesBehindACopyAreNobodysBusiness) {
  WriteFile(newer_, newerBytes_ + "and more");
  EXPECT_EQ(Value("key"), "new");
  EXPECT_EQ(Put("key", "third"), 0);
  EXPECT_EQ(Put("key", "fourth"), 0);
  EXPECT_EQ(ReadFile(newer_).substr(kCopySize), "and more");
}

TEST_F(NvramDamageTest, AFolderInPlaceOfACopyIsSaidAndNotTouched) {
  std::filesystem::remove(older_);
  std::filesystem::create_directory(older_);
  const TraceCapture trace;
  EXPECT_FALSE(CanOpen());
  EXPECT_TRUE(trace.Has("nvram: cannot open: cannot read " + older_ + ": Is a directory; cannot write " +
                        older_ + ": Is a directory"));
  EXPECT_TRUE(std::filesystem::is_directory(older_));
  EXPECT_EQ(ReadFile(newer_), newerBytes_);
}

TEST_F(NvramDamageTest, WhatIsMendedIsTraced) {
  const TraceCapture trace;
  std::filesystem::resize_file(older_, 10);
  EXPECT_TRUE(CanOpen());
  EXPECT_TRUE(trace.Has("nvram: " + older_ + " is shorter than its copy: mended from " + newer_));
}

TEST_F(NvramDamageTest, AMadeCopyHasTheModeOfTheOther) {
  using std::filesystem::perms;
  const perms mode = perms::owner_read | perms::owner_write | perms::group_read;
  std::filesystem::permissions(newer_, mode);
  std::filesystem::remove(older_);
  EXPECT_TRUE(CanOpen());
  EXPECT_EQ(std::filesystem::status(older_).permissions(), mode);
}

TEST_F(NvramDamageTest, ACopyWithoutAnEndIsMendedThoughItsChecksumHolds) {
  std::string bytes = newerBytes_;
  std::fill(bytes.begin() + 5, bytes.end(), 'x');
  WriteFile(newer_, bytes);
  EXPECT_EQ(Value("key"), "old");
}

TEST_F(NvramDamageTest, NothingIsLeftBesideTheCopies) {
  std::filesystem::remove(older_);
  EXPECT_TRUE(CanOpen());
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_.Path())) ++count;
  EXPECT_EQ(count, 3U);
}

}  // namespace
