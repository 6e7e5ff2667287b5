// What to do when the driver does not give the results of a scan.
#ifndef ZQUTIL_SCAN_RETRY_H
#define ZQUTIL_SCAN_RETRY_H

#include <cerrno>
#include <cstdint>

struct ScanRetry {
  enum class Step : uint8_t {
    kAskAtOnce,  // with a buffer of `size`
    kAskLater,   // after a new wait
    kAskInTurn,  // after what is left of the wait
    kGiveUp
  };
  Step step;
  uint32_t size;  // of the buffer, bytes
};

// The request names the buffer's size in 16 bits.
constexpr uint32_t kLargestScanBuffer = UINT16_MAX;

// `error` is the refusal's errno, `version` the driver's we_version_compiled, `size` the buffer's, and `reported` the
// length that the driver left in the request. A driver that the largest buffer does not content is given up: asking it
// again would never end.
constexpr ScanRetry AfterRefusal(int error, int version, uint32_t size, uint32_t reported) {
  constexpr int kLastVersionWithoutLength = 16;
  if (error == EAGAIN) return {ScanRetry::Step::kAskLater, size};
  if (error != E2BIG) return {ScanRetry::Step::kGiveUp, size};
  if (version <= kLastVersionWithoutLength) return {ScanRetry::Step::kAskInTurn, size};
  if (size >= kLargestScanBuffer) return {ScanRetry::Step::kGiveUp, size};
  const uint32_t larger = reported > size ? reported : 2 * size;
  return {ScanRetry::Step::kAskAtOnce, larger < kLargestScanBuffer ? larger : kLargestScanBuffer};
}

#endif
