// Scans when memory runs out: this program stands before the platform's allocation.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "scan_fixture.h"
#include "wireless_calls.h"
#include "zq_list.h"
#include "zq_memory.h"

namespace {

// How many allocations of each kind succeed yet; -1 all.
int g_blocks = -1;
int g_texts = -1;
int g_places = -1;  // in the list
// Blocks and texts that were not given back.
int g_held = 0;

bool Fails(int& left) {
  if (left < 0) return false;
  if (left == 0) return true;
  --left;
  return false;
}

template <typename Call>
Call Next(const char* name) {
  return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

class ScanMemoryTest : public ScanTest {
 protected:
  ~ScanMemoryTest() override { Enough(); }
  static void Enough() {
    g_blocks = -1;
    g_texts = -1;
    g_places = -1;
  }
  std::string ScanWith(int blocks, int texts, int places = -1) {
    network.EmptyESSIDList();
    const int held = g_held;
    g_blocks = blocks;
    g_texts = texts;
    g_places = places;
    std::string list = Scan();
    Enough();
    network.EmptyESSIDList();
    EXPECT_EQ(g_held, held) << "all is given back";
    return list;
  }
};

TEST_F(ScanMemoryTest, WithoutABufferThereAreNoResults) {
  SetCells("[a]");
  EXPECT_EQ(ScanWith(0, -1), "");
  EXPECT_EQ(EventTraces(), "ZQUtil GetESSIDList Error\n");
  EXPECT_EQ(TakeWirelessCalls(), "socket\ntype ra0 active 0\nrange ra0\nscan ra0\nwait 250000\nclose\n");
}

TEST_F(ScanMemoryTest, WithoutALargerBufferThereAreNoResults) {
  SetCells("[a]");
  SetRadio("wants_bytes = 6000");
  EXPECT_EQ(ScanWith(1, -1), "");
  EXPECT_EQ(EventTraces(), "ZQUtil GetESSIDList Error\n");
}

TEST_F(ScanMemoryTest, WithoutARecordTheReadingStops) {
  SetCells("[a]\n[b]\n[c]");
  EXPECT_EQ(ScanWith(2, -1), "a strength 38\n");
  EXPECT_EQ(EventTraces().find("Adding b"), std::string::npos);
  EXPECT_EQ(ScanWith(3, -1), "a strength 38\nb strength 38\n") << "the last is settled at the end";
  EXPECT_EQ(ScanWith(4, -1), "a strength 38\nb strength 38\nc strength 38\n");
}

TEST_F(ScanMemoryTest, WithoutAPlaceInTheListTheReadingStops) {
  SetCells("[a]\n[b]\n[c]");
  EXPECT_EQ(ScanWith(-1, -1, 0), "");
  EXPECT_EQ(ScanWith(-1, -1, 1), "a strength 38\n");
  EXPECT_EQ(EventTraces().find("Adding c"), std::string::npos);
  EXPECT_EQ(ScanWith(-1, -1, 2), "a strength 38\nb strength 38\n") << "the last is settled at the end";
}

TEST_F(ScanMemoryTest, ANameThatFindsNoRoomIsNone) {
  SetCells("[a]\n[b]");
  EXPECT_EQ(ScanWith(-1, 1), "a strength 38\n");
  EXPECT_NE(EventTraces().find("ZQUtil SIOCGIWESSID\nInvalid - Bad SSID\n"), std::string::npos);
}

TEST_F(ScanMemoryTest, ASignalNeedsItsRecordAndItsName) {
  Traces();
  g_blocks = 0;
  EXPECT_EQ(network.GetESSIDInfo("a"), nullptr);
  EXPECT_EQ(Traces().find("Getting Parameters"), std::string::npos);
  Enough();
  g_texts = 0;
  _ESSIDStruct* const record = network.GetESSIDInfo("a");
  Enough();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->ESSID, nullptr);
  EXPECT_EQ(Traces().find("Getting Parameters"), std::string::npos);
  zq__free(record, "test", __LINE__);
}

}  // namespace

#define STANDS_BEFORE extern "C" __attribute__((visibility("default")))

STANDS_BEFORE void* zq__calloc(size_t count, size_t size, const char* file, int line) {
  if (Fails(g_blocks)) return nullptr;
  ++g_held;
  return Next<decltype(&zq__calloc)>("zq__calloc")(count, size, file, line);
}

STANDS_BEFORE char* zq__newString(const char* text, const char* file, int line) {
  if (Fails(g_texts)) return nullptr;
  char* const copy = Next<decltype(&zq__newString)>("zq__newString")(text, file, line);
  if (copy != nullptr) ++g_held;
  return copy;
}

STANDS_BEFORE void zq__free(void* block, const char* file, int line) {
  if (block != nullptr) --g_held;
  Next<decltype(&zq__free)>("zq__free")(block, file, line);
}

__attribute__((visibility("default"))) bool zq_List::Add(void* record) {
  return !Fails(g_places) && AddTail(record);
}
