// Which packages a device can install, and what their names say.
#include <gtest/gtest.h>

#include "InstallRule.h"

namespace {

TEST(InstallRule, FollowsBootLoaderAndPartitions) {
  static_assert(InstallFor(1, 4) == Install::kApply);
  static_assert(InstallFor(7, 4) == Install::kApply);
  static_assert(InstallFor(0, 2) == Install::kCopy);
  static_assert(InstallFor(0, 4) == Install::kCopy);
  for (const int32_t partitions : {-1, 0, 1, 2, 3, 5, 44}) {
    EXPECT_EQ(InstallFor(1, partitions), Install::kNot) << partitions;
  }
  for (const int32_t partitions : {-1, 0, 1, 3, 5})
    EXPECT_EQ(InstallFor(0, partitions), Install::kNot) << partitions;
  for (const int32_t partitions : {0, 2, 4})
    EXPECT_EQ(InstallFor(-1, partitions), Install::kNot) << partitions;
}

TEST(InstallRule, MediaPackagesAreKnownByTheirNameInAnyCase) {
  EXPECT_TRUE(IsMediaPackage("app-lg__media-1.tgz"));
  EXPECT_TRUE(IsMediaPackage("LG__Media"));
  EXPECT_FALSE(IsMediaPackage("app-lg_media.tgz"));
  EXPECT_FALSE(IsMediaPackage(""));
}

TEST(InstallRule, EncryptedPackagesBeginWithCappExactly) {
  EXPECT_TRUE(IsEncryptedPackage("capp-2.1.tgz"));
  EXPECT_TRUE(IsEncryptedPackage("capp"));
  EXPECT_FALSE(IsEncryptedPackage("Capp-2.1.tgz"));
  EXPECT_FALSE(IsEncryptedPackage("xcapp-2.1.tgz"));
  EXPECT_FALSE(IsEncryptedPackage("app-2.1.tgz"));
  EXPECT_FALSE(IsEncryptedPackage("cap"));
}

TEST(InstallRule, ADecryptedPackageLosesItsFirstC) {
  EXPECT_EQ(DecryptedPath("/tmp/capp-x.tgz"), "/tmp/app-x.tgz");
  EXPECT_EQ(DecryptedPath("/tmp/capp-capp.tgz"), "/tmp/app-capp.tgz");
  EXPECT_EQ(DecryptedPath("/tmp/x.tgz"), "app-generic.tgz");
}

}  // namespace
