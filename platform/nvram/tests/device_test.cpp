// The way to devices leads through the library, which takes a file for a device: so do these tests.

#include "device_store.h"
#include "library_context.h"
#include "nvram_fixture.h"
#include "store_config.h"
#include "uboot_library.h"

namespace {

class NvramDeviceTest : public NvramTest {
 protected:
  NvramDeviceTest() {
    WriteFile(first_, std::string(kCopySize, '\xff'));
    WriteFile(second_, std::string(kCopySize, '\xff'));
    ReadStoreConfig(config_, parsed_);
  }

  StoreConfig parsed_;
};

TEST_F(NvramDeviceTest, ErasedFlashHoldsNoStore) {
  EXPECT_FALSE(IsOnDevice(parsed_));
  EXPECT_FALSE(LibraryFindsStore(config_));
}

TEST_F(NvramDeviceTest, BothCopiesAreMadeEmpty) {
  EXPECT_EQ(EraseThroughLibrary(config_, parsed_), "");
  EXPECT_TRUE(LibraryFindsStore(config_));
  for (const std::string& path : {first_, second_}) {
    const std::string whole = ReadFile(path);
    WriteFile(path, "");
    EXPECT_EQ(Value("key"), "(missing)");
    WriteFile(path, whole);
  }
}

TEST_F(NvramDeviceTest, AStoreIsEmptied) {
  EraseThroughLibrary(config_, parsed_);
  Put("a", "1");
  Put("b", "2");
  EXPECT_EQ(EraseThroughLibrary(config_, parsed_), "");
  EXPECT_EQ(Value("a"), "(missing)");
  std::filesystem::remove(first_);
  EXPECT_EQ(Value("b"), "(missing)");
}

TEST_F(NvramDeviceTest, WhatTheLibraryHoldsIsWritten) {
  EraseThroughLibrary(config_, parsed_);
  {
    LibraryContext library;
    std::string why;
    ASSERT_EQ(library.Open(config_, why), 0) << why;
    ASSERT_EQ(libuboot_set_env(library.Get(), "key", "value"), 0);
    EXPECT_EQ(StoreThroughLibrary(library.Get(), parsed_), "");
  }
  EXPECT_EQ(Value("key"), "value");
}

TEST_F(NvramDeviceTest, CopiesThatAreNotThereAreSaid) {
  std::filesystem::remove(first_);
  EXPECT_EQ(EraseThroughLibrary(config_, parsed_),
            "cannot use the copies that " + config_ + " names: Invalid argument");
}

}  // namespace
