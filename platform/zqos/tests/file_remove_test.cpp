#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_file.h"

namespace {

namespace fs = std::filesystem;

// Settled or not.
class FileRemove : public testing::TestWithParam<bool> {
 protected:
  bool Remove(const std::string& path) const { return zq_RemoveFile(path.c_str(), GetParam()); }

  TempDir folder_;
};

INSTANTIATE_TEST_SUITE_P(, FileRemove, testing::Bool(),
                         [](const auto& suite) { return suite.param ? "Settled" : "AtOnce"; });

TEST_P(FileRemove, AFileIsGone) {
  WriteFile(folder_ / "file", "x");
  EXPECT_TRUE(Remove(folder_ / "file"));
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_P(FileRemove, WhatIsNotThereIsGoneWithoutAWord) {
  WriteFile(folder_ / "file", "x");
  const TraceCapture trace;
  EXPECT_TRUE(Remove(folder_ / "missing"));
  EXPECT_TRUE(Remove(folder_ / "missing/file"));
  EXPECT_TRUE(Remove(folder_ / "file/inside"));
  EXPECT_EQ(trace.Raw(), "");
}

TEST_P(FileRemove, AFolderStays) {
  fs::create_directory(folder_ / "sub");
  EXPECT_FALSE(Remove(folder_ / "sub"));
  EXPECT_TRUE(fs::exists(folder_ / "sub"));
}

TEST_P(FileRemove, OfALinkOnlyTheLinkGoes) {
  WriteFile(folder_ / "file", "x");
  fs::create_symlink("file", folder_ / "link");
  EXPECT_TRUE(Remove(folder_ / "link"));
  EXPECT_TRUE(fs::exists(folder_ / "file"));
  EXPECT_FALSE(fs::is_symlink(folder_ / "link"));
}

TEST_P(FileRemove, ANameWithoutAFolderIsInTheWorkingFolder) {
  WriteFile(folder_ / "file", "x");
  const fs::path before = fs::current_path();
  fs::current_path(folder_.Path());
  EXPECT_TRUE(Remove("file"));
  fs::current_path(before);
  EXPECT_FALSE(fs::exists(folder_ / "file"));
}

TEST_P(FileRemove, NullIsRefused) {
  EXPECT_FALSE(zq_RemoveFile(nullptr, GetParam()));
}

}  // namespace
