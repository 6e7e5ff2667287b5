// The results of a scan, as the driver packs them, as records in a list.
#ifndef ZQUTIL_SCAN_RESULTS_H
#define ZQUTIL_SCAN_RESULTS_H

#include <cstddef>

#include "zq_list.h"

// Adds a record for each network. `results` are `length` bytes, with ScanStream::kSlack bytes behind them; `version` is
// the driver's we_version_compiled; `wanted` is the one network that the scan is for, at which the reading ends, or
// null. Any bytes do.
void ReadScanResults(char* results, size_t length, int version, const char* wanted, zq_List* list);

#endif
