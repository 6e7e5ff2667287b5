// Any bytes as the results of a scan. The first says which version the driver has, and whether the scan is for one
// network.
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <string_view>

#include "ESSIDStruct.h"
#include "ScanResults.h"
#include "ScanStream.h"
#include "zq_memory.h"
#include "zq_trace.h"

std::atomic<int> ZQUtilTraceInstance{0};

namespace {

void Require(bool holds) {
  if (!holds) abort();
}

// Takes the records out. Each is one that the results can have told of.
void RequireNetworks(zq_List& list, std::string_view results) {
  std::set<std::string> names;
  while (auto* const record = static_cast<_ESSIDStruct*>(list.RemoveHead())) {
    Require(record->ESSID != nullptr);
    const std::string name = record->ESSID;
    Require(!name.empty() && name.size() <= 32 && names.insert(name).second);
    Require(results.find(name) != std::string_view::npos);
    Require(record->strength >= -142 && record->strength <= 113);
    Require(record->encrypted <= 1 && record->TKIP <= 1 && record->AES <= 1);
    Require(record->WPAVersion >= 0 && record->WPAVersion <= 2);
    zq__free(record->ESSID, "fuzz", __LINE__);
    zq__free(record, "fuzz", __LINE__);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool quiet = zq_TraceRedirect("off", INT_MAX);
  Require(quiet);
  if (size == 0) return 0;
  const int version = data[0] & 31;
  const bool wants = (data[0] & 32) != 0;
  const std::string_view results(reinterpret_cast<const char*>(data) + 1, size - 1);
  // Memory that ends where the results' room ends.
  auto* const buffer = static_cast<char*>(calloc(results.size() + ScanStream::kSlack, 1));
  Require(buffer != nullptr);
  memcpy(buffer, results.data(), results.size());
  zq_List list("networks", "fuzz", __LINE__);
  ReadScanResults(buffer, results.size(), version, wants ? "net" : nullptr, &list);
  free(buffer);
  RequireNetworks(list, results);
  return 0;
}
