#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "trace_capture.h"
#include "zq_memory.h"

namespace {

void* Calloc(size_t count, size_t size) {
  return zq__calloc(count, size, "caller.cpp", 12);
}

TEST(Memory, BlocksAreFilledWithZeros) {
  auto* block = static_cast<unsigned char*>(Calloc(100, 7));
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(std::count(block, block + 700, 0), 700);
  zq__free(block, __FILE__, __LINE__);
}

TEST(Memory, ABlockOfNoBytesIsNotAFailure) {
  void* block = Calloc(0, 8);
  EXPECT_NE(block, nullptr);
  zq__free(block, __FILE__, __LINE__);
}

TEST(Memory, ASizeThatOverflowsIsRefusedAndTheTraceSaysWhoAsked) {
  const TraceCapture trace;
  EXPECT_EQ(Calloc(SIZE_MAX / 2, 3), nullptr);
  EXPECT_EQ(Calloc(SIZE_MAX, 1), nullptr);
  const std::vector<TraceLine> lines = trace.Lines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].level, 30000);
  EXPECT_EQ(lines[0].name, "zqos");
  EXPECT_EQ(lines[0].text,
            "no memory for " + std::to_string(SIZE_MAX / 2) + " times 3 bytes (caller.cpp:12)");
}

TEST(Memory, AFailureWithoutASourceIsTracedAllTheSame) {
  const TraceCapture trace;
  EXPECT_EQ(zq__calloc(SIZE_MAX, 2, nullptr, 0), nullptr);
  EXPECT_TRUE(trace.Has("no memory for " + std::to_string(SIZE_MAX) + " times 2 bytes (-:0)"));
}

TEST(Memory, NewStringCopiesEveryByte) {
  const char text[] = "caf\xC3\xA9 \xFF";
  char* copy = zq__newString(text, __FILE__, __LINE__);
  EXPECT_STREQ(copy, text);
  EXPECT_NE(copy, text);
  zq__free(copy, __FILE__, __LINE__);
}

TEST(Memory, NewStringOfNullIsNullAndOfNothingIsNothing) {
  EXPECT_EQ(zq__newString(nullptr, __FILE__, __LINE__), nullptr);
  char* empty = zq__newString("", __FILE__, __LINE__);
  EXPECT_STREQ(empty, "");
  zq__free(empty, __FILE__, __LINE__);
}

TEST(Memory, FreeingNullDoesNothing) {
  zq__free(nullptr, nullptr, 0);
}

}  // namespace
