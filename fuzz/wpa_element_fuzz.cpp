// Any bytes as a network's information element.
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdlib>

#include "WpaElement.h"
#include "zq_trace.h"

std::atomic<int> ZQUtilTraceInstance{0};

namespace {

void Require(bool holds) {
  if (!holds) abort();
}

bool Same(const _ESSIDStruct& one, const _ESSIDStruct& other) {
  return one.WPAVersion == other.WPAVersion && one.TKIP == other.TKIP && one.AES == other.AES;
}

_ESSIDStruct Read(const uint8_t* bytes, size_t size, const _ESSIDStruct& before) {
  _ESSIDStruct record = before;
  ReadWpaElement(bytes, static_cast<int32_t>(size), &record);
  // Nothing else is touched.
  Require(record.ESSID == before.ESSID && record.strength == before.strength &&
          record.encrypted == before.encrypted);
  return record;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool quiet = zq_TraceRedirect("off", INT_MAX);
  Require(quiet);
  const _ESSIDStruct unknown{};
  const _ESSIDStruct known{nullptr, 7, 1, 2, 1, 1};
  const _ESSIDStruct record = Read(data, size, unknown);
  const bool is = size > 0 && (data[0] == 48 || data[0] == 221);
  Require(record.TKIP <= 1 && record.AES <= 1 && (is || Same(record, unknown)));
  Require(record.WPAVersion == 0 || record.WPAVersion == (data[0] == 48 ? 2 : 1));
  // Read twice, it says the same; a WPA2 finding stays, TKIP is never taken back.
  Require(Same(Read(data, size, record), record));
  const _ESSIDStruct more = Read(data, size, known);
  Require(more.WPAVersion == 2 && more.TKIP == 1);
  // What lies behind a whole element that is not short does not count.
  if (size > 1 && size_t{data[1]} + 2 <= size && data[1] >= 12) {
    Require(Same(Read(data, size_t{data[1]} + 2, unknown), record));
  }
  return 0;
}
