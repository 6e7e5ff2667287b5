#include "scan_memory.h"

#include <atomic>
#include <cstring>
#include <ctime>

namespace {

// A scan's time in nanoseconds of the monotonic clock; 0 when there was none.
constinit std::atomic<uint64_t> begun{0};
// The name in words that are whole each: two threads that ask at once get a mixture at worst.
constinit std::atomic<uint64_t> askedWords[CellName::kLongest / sizeof(uint64_t)] = {};
constinit std::atomic<size_t> askedLength{0};

uint64_t Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1000000000 + static_cast<uint64_t>(now.tv_nsec);
}

}  // namespace

void NoteScan(const CellName& asked) {
  uint64_t words[CellName::kLongest / sizeof(uint64_t)];
  memcpy(words, asked.bytes, sizeof(words));
  for (size_t i = 0; i < sizeof(words) / sizeof(words[0]); ++i) askedWords[i] = words[i];
  askedLength = asked.length;
  begun = Now();
}

uint32_t MsSinceScan() {
  const uint64_t then = begun;
  if (then == 0) return UINT32_MAX;
  const uint64_t ms = (Now() - then) / 1000000;
  return ms < UINT32_MAX ? static_cast<uint32_t>(ms) : UINT32_MAX;
}

CellName ScanAskedFor() {
  CellName asked;
  uint64_t words[CellName::kLongest / sizeof(uint64_t)];
  for (size_t i = 0; i < sizeof(words) / sizeof(words[0]); ++i) words[i] = askedWords[i];
  memcpy(asked.bytes, words, sizeof(words));
  asked.length = askedLength;
  return asked;
}
