// The time zone that a device of an edition has until somebody chooses one.
#ifndef ZQUTIL_EDITION_ZONE_H
#define ZQUTIL_EDITION_ZONE_H

#include <string_view>

// For a device whose edition file cannot be read. Not the zone of an unknown edition, which is US/Eastern.
constexpr char kZoneWithoutEdition[] = "/usr/share/zoneinfo/GB";

// By the tag at the start of the edition file's text, in any case of letters.
const char* ZoneOfEdition(std::string_view editionText);

#endif
