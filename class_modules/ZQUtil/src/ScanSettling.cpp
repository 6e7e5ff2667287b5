#include "ScanSettling.h"

#include <cstring>

#include "ZQUtilTrace.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ScanSettling";
constexpr uint32_t kAdHoc = 1;

}  // namespace

ScanSettling::ScanSettling(zq_List* list, const char* wanted) : list_(list), wanted_(wanted) {
  for (auto* position = list->First(); position != nullptr; position = list->Next(position)) {
    const auto* const record = static_cast<const _ESSIDStruct*>(list->Record(position));
    if (record->ESSID != nullptr) hashes_.set(Hash(record->ESSID));
  }
}

ScanSettling::~ScanSettling() {
  Clear();
}

bool ScanSettling::Before(const iw_event& event) {
  if (event.cmd != SIOCGIWESSID) return true;
  bool found = false;
  if (wanted_ != nullptr && working_.ESSID != nullptr) {
    found = strcmp(working_.ESSID, wanted_) == 0;
    if (found) {
      ZQUTIL_TRACE("ZQUtil accepting this essid %s looking for %s\n", working_.ESSID, wanted_);
    } else {
      ZQUTIL_TRACE("ZQUtil ignoring this essid %s looking for %s\n", working_.ESSID, wanted_);
    }
  }
  if (!Settle()) return false;
  if (found) ZQUTIL_TRACE("ZQUtil only cares about this ESSID so leaving now\n");
  return !found;
}

void ScanSettling::After(const iw_event& event) {
  if (event.cmd == SIOCGIWESSID) {
    invalid_ = working_.ESSID == nullptr;
    if (invalid_) {
      ZQUTIL_TRACE("Invalid - Bad SSID\n");
    } else {
      ZQUTIL_TRACE("This is a Valid SSID\n");
    }
  } else if (event.cmd == SIOCGIWMODE && event.u.mode == kAdHoc) {
    ZQUTIL_TRACE("Invalid - AdHoc SSID\n");
    invalid_ = true;
  }
}

// False when there is no memory.
bool ScanSettling::Settle() {
  // What the record says besides its name stays for the next cell then.
  if (invalid_ || working_.ESSID == nullptr) return true;
  if (working_.ESSID[0] == '\0') {
    ZQUTIL_TRACE("Ditching zero length ESSID\n");
  } else if (const size_t hash = Hash(working_.ESSID); IsListed(hash)) {
    ZQUTIL_TRACE("=====\n");
    ZQUTIL_TRACE(
        "ZQUtil GetESSIDList Not Adding (duplicate) %s, encrypted %d, strength %d WPA %d TKIP %d AES %d\n",
        working_.ESSID, working_.encrypted, working_.strength, working_.WPAVersion, working_.TKIP,
        working_.AES);
  } else {
    return Add(hash);
  }
  Clear();
  return true;
}

void ScanSettling::End() {
  if (invalid_ || working_.ESSID == nullptr) return;
  if (working_.ESSID[0] == '\0') {
    ZQUTIL_TRACE("Ditching zero length ESSID\n");
  } else if (const size_t hash = Hash(working_.ESSID); !IsListed(hash)) {
    Add(hash);
  }
}

bool ScanSettling::IsListed(size_t hash) const {
  if (!hashes_.test(hash)) return false;
  for (auto* position = list_->First(); position != nullptr; position = list_->Next(position)) {
    const auto* const record = static_cast<const _ESSIDStruct*>(list_->Record(position));
    if (record->ESSID != nullptr && strcmp(record->ESSID, working_.ESSID) == 0) return true;
  }
  return false;
}

// Of the name's ends, which tell most names apart.
size_t ScanSettling::Hash(const char* name) {
  const size_t length = strlen(name);
  uint64_t first = 0;
  uint64_t last = 0;
  if (length >= sizeof first) {
    memcpy(&first, name, sizeof first);
    memcpy(&last, name + length - sizeof last, sizeof last);
  } else {
    memcpy(&first, name, length);
  }
  const uint64_t mixed = (first + 31 * last) * 0x9E3779B97F4A7C15;
  // The product's high bits depend on all of the bytes.
  return mixed >> (64 - kHashBits);
}

// The name goes over to the new record.
bool ScanSettling::Add(size_t hash) {
  auto* const record = static_cast<_ESSIDStruct*>(zq__calloc(1, sizeof(_ESSIDStruct), kSourceTag, __LINE__));
  if (record == nullptr) return false;
  ZQUTIL_TRACE("=====\n");
  ZQUTIL_TRACE("ZQUtil GetESSIDList Adding %s, encrypted %d, strength %d WPA %d TKIP %d AES %d\n",
               working_.ESSID, working_.encrypted, working_.strength, working_.WPAVersion, working_.TKIP,
               working_.AES);
  *record = working_;
  if (!list_->Add(record)) {
    zq__free(record, kSourceTag, __LINE__);
    return false;
  }
  working_ = {};
  hashes_.set(hash);
  return true;
}

void ScanSettling::Clear() {
  zq__free(working_.ESSID, kSourceTag, __LINE__);
  working_ = {};
}
