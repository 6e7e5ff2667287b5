// The time zones that the screens offer: zoneinfo file and description. The texts are what users of the device know,
// odd words and offsets included; scripts and stored settings rely on them.
#ifndef ZQUTIL_TIME_ZONE_TABLE_H
#define ZQUTIL_TIME_ZONE_TABLE_H

#include <cstddef>

#include "module_api.h"

constexpr char kZoneFolder[] = "/usr/share/zoneinfo";
constexpr size_t kTimeZoneRows = 76;

struct TimeZoneRow {
  const char* path;
  const char* description;
};

extern "C" {
ZQUTIL_API extern const TimeZoneRow tztable[kTimeZoneRows];
}

// The row of a zoneinfo file, by its exact path; null when the table has none.
const TimeZoneRow* FindTimeZoneRow(const char* path);
// Whether the table has a zone anywhere below the folder.
bool TimeZonesBelow(const char* folder);

#endif
