#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include <cstdint>

#include "zq_file.h"

namespace {

const struct statvfs* g_volume = nullptr;  // what every path lies on; null: the system answers

}  // namespace

// Stands before libc's.
extern "C" __attribute__((visibility("default"))) int statvfs(const char* path,
                                                              struct statvfs* volume) noexcept {
  if (g_volume != nullptr) {
    *volume = *g_volume;
    return 0;
  }
  static const auto system = reinterpret_cast<decltype(&statvfs)>(dlsym(RTLD_NEXT, "statvfs"));
  return system(path, volume);
}

namespace {

struct Room {
  uint32_t freeKb = 1;
  uint32_t availableKb = 1;
};

Room Of(uint64_t blocks, uint64_t available, unsigned long blockBytes) {
  struct statvfs volume {};
  volume.f_bfree = blocks;
  volume.f_bavail = available;
  volume.f_frsize = blockBytes;
  volume.f_bsize = 1;  // not the unit of the counts
  g_volume = &volume;
  Room room;
  EXPECT_TRUE(zq_GetVolumeInfo("/anywhere", &room.freeKb, &room.availableKb));
  g_volume = nullptr;
  return room;
}

TEST(Volume, RoomIsInKibAndWhatIsReservedIsNotAvailable) {
  const Room room = Of(1000, 900, 4096);
  EXPECT_EQ(room.freeKb, 4000U);
  EXPECT_EQ(room.availableKb, 3600U);
}

TEST(Volume, APartOfAKibIsNoKib) {
  EXPECT_EQ(Of(3, 1, 512).freeKb, 1U);
  EXPECT_EQ(Of(3, 1, 512).availableKb, 0U);
}

TEST(Volume, RoomBeyondFourTebibytesIsLimited) {
  EXPECT_EQ(Of(uint64_t{1} << 30, (uint64_t{1} << 30) - 1, 4096).freeKb, UINT32_MAX);
  EXPECT_EQ(Of(uint64_t{1} << 30, (uint64_t{1} << 30) - 1, 4096).availableKb, UINT32_MAX - 3);
  EXPECT_EQ(Of(UINT64_MAX, UINT64_MAX, 4096).freeKb, UINT32_MAX);
}

TEST(Volume, AVolumeWithoutRoomHasNone) {
  Room room;
  EXPECT_TRUE(zq_GetVolumeInfo("/proc", &room.freeKb, &room.availableKb));
  EXPECT_EQ(room.freeKb, 0U);
  EXPECT_EQ(room.availableKb, 0U);
}

TEST(Volume, TheSystemsOwnHasRoomAndNoMoreAvailableThanFree) {
  Room room;
  EXPECT_TRUE(zq_GetVolumeInfo("/", &room.freeKb, &room.availableKb));
  EXPECT_GT(room.freeKb, 1U);
}

TEST(Volume, AMissingPathIsFalseAndNoRoom) {
  Room room;
  EXPECT_FALSE(zq_GetVolumeInfo("/nowhere/at/all", &room.freeKb, &room.availableKb));
  EXPECT_EQ(room.freeKb, 0U);
  EXPECT_EQ(room.availableKb, 0U);
  EXPECT_FALSE(zq_GetVolumeInfo("", nullptr, nullptr));
}

TEST(Volume, OneOfTheAnswersMayBeUnwanted) {
  uint32_t room = 1;
  EXPECT_TRUE(zq_GetVolumeInfo("/proc", nullptr, &room));
  EXPECT_EQ(room, 0U);
  EXPECT_TRUE(zq_GetVolumeInfo("/proc", &room, nullptr));
  EXPECT_FALSE(zq_GetVolumeInfo(nullptr, &room, nullptr));
}

}  // namespace
