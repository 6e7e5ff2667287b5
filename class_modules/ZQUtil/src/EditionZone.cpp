#include "EditionZone.h"

#include <strings.h>

namespace {

struct EditionRow {
  std::string_view tag;
  const char* zone;
};

// The first tag that fits decides.
constexpr EditionRow kEditions[] = {
    {"marlowe", "/usr/share/zoneinfo/Brazil/East"},
    {"vy", "/usr/share/zoneinfo/GB"},
    {"sunward_Halvo", "/usr/share/zoneinfo/US/Central"},
    {"brisk", "/usr/share/zoneinfo/Europe/Amsterdam"},
    {"norvikflash", "/usr/share/zoneinfo/Europe/Amsterdam"},
    {"kvl", "/usr/share/zoneinfo/Europe/Amsterdam"},
    {"dunmere", "/usr/share/zoneinfo/Asia/Dubai"},
};
constexpr char kZoneOfOthers[] = "/usr/share/zoneinfo/US/Eastern";

}  // namespace

const char* ZoneOfEdition(std::string_view editionText) {
  for (const EditionRow& row : kEditions) {
    if (editionText.size() < row.tag.size()) continue;
    if (strncasecmp(editionText.data(), row.tag.data(), row.tag.size()) == 0) return row.zone;
  }
  return kZoneOfOthers;
}
