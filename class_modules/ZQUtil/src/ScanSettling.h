// From the events of a scan to the list of networks: one record for each name, the first that came.
//
// A cell begins with its address, but its record is settled when the next name comes, so what a cell says before its
// name is written into the record before; a driver says only the address there, which no record keeps.
#ifndef ZQUTIL_SCAN_SETTLING_H
#define ZQUTIL_SCAN_SETTLING_H

#include <iwlib.h>

#include <bitset>

#include "ESSIDStruct.h"
#include "zq_list.h"

class ScanSettling {
 public:
  // Adds to the list, whose records outlive this object. `wanted` is the one name that the scan is for, or null.
  ScanSettling(zq_List* list, const char* wanted);
  ScanSettling(const ScanSettling&) = delete;
  ScanSettling& operator=(const ScanSettling&) = delete;
  ~ScanSettling();

  // An event is about to be applied to the working record. False when the scan has all that it is for, or no memory
  // for more: the event is not to be applied, and nothing more to be told.
  bool Before(const iw_event& event);
  // The event has been applied.
  void After(const iw_event& event);
  // There are no more events.
  void End();

  _ESSIDStruct* Working() { return &working_; }

 private:
  bool Settle();
  bool IsListed(size_t hash) const;
  static size_t Hash(const char* name);
  bool Add(size_t hash);
  void Clear();

  zq_List* list_;
  const char* wanted_;
  _ESSIDStruct working_ = {};
  bool invalid_ = true;
  // By the hash of each name in the list: most new names are found to be new without a look through the list.
  static constexpr int kHashBits = 14;
  std::bitset<size_t{1} << kHashBits> hashes_;
};

#endif
