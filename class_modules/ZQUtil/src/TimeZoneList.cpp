// The time zones that are installed: found by a walk over the zoneinfo tree, put in display order once.
#include <sys/stat.h>

#include <cstddef>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "DeviceFile.h"
#include "EditionZone.h"
#include "OwnedText.h"
#include "TimeZoneTable.h"
#include "ZQDateTime.h"
#include "ZQUtilTrace.h"
#include "zq_file.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/TimeZoneList";
constexpr char kEditionFile[] = "/etc/client.tag";
// The display begins here and the zones that sort before it come last.
constexpr char kFirstZone[] = "/usr/share/zoneinfo/Canada/Atlantic";

void FreeNode(TimeZoneNode* node) {
  zq__free(node->path, kSourceTag, __LINE__);
  zq__free(node->description, kSourceTag, __LINE__);
  zq__free(node, kSourceTag, __LINE__);
}

// Null when memory runs out.
TimeZoneNode* NewNode(const TimeZoneRow& row) {
  auto* const node = static_cast<TimeZoneNode*>(zq__calloc(1, sizeof(TimeZoneNode), kSourceTag, __LINE__));
  if (node == nullptr) return nullptr;
  node->path = zq__newString(row.path, kSourceTag, __LINE__);
  node->description = zq__newString(row.description, kSourceTag, __LINE__);
  if (node->path != nullptr && node->description != nullptr) return node;
  FreeNode(node);
  return nullptr;
}

bool IsLeftOut(const char* folder) {
  for (const char* const name : {".", "..", "posix", "right"}) {
    if (std::strcmp(folder, name) == 0) return true;
  }
  return false;
}

// One walk over a tree. Links are followed, so folders may contain each other, and in more ways than there are stars:
// a folder in which no zone can be found is entered the first time that the walk meets it, and never below kDeepest.
class ZoneWalk {
 public:
  explicit ZoneWalk(zq_List& list) : list_(list) {}

  void Visit(const std::string& folder, int depth = 0) {
    if (!IsWorthAVisit(folder, depth)) return;
    zq_FindData entry = {};
    const Search search(zq_FindFirstFile((folder + "/*").c_str(), &entry), zq_FindClose);
    if (search == nullptr) return;
    std::string path = folder + "/";
    const size_t start = path.size();
    do {
      path.resize(start);
      path += entry.name;
      if (!entry.isDirectory) {
        AddFile(path);
      } else if (!IsLeftOut(entry.name)) {
        ZQUTIL_TRACE("ZQUtil node is a directory %s\n", entry.name);
        Visit(path, depth + 1);
      }
    } while (zq_FindNextFile(search.get(), &entry));
  }

 private:
  using Search = std::unique_ptr<zq_Find, void (*)(zq_Find*)>;
  // Each level keeps a folder open.
  static constexpr int kDeepest = 64;

  void AddFile(const std::string& path) {
    const TimeZoneRow* const row = FindTimeZoneRow(path.c_str());
    if (row == nullptr) return;
    TimeZoneNode* const node = NewNode(*row);
    if (node != nullptr && !list_.Add(node)) FreeNode(node);
  }

  bool IsWorthAVisit(const std::string& folder, int depth) {
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0) return false;
    const bool isNew = visited_.emplace(status.st_dev, status.st_ino).second;
    return depth <= kDeepest && (isNew || TimeZonesBelow(folder.c_str()));
  }

  zq_List& list_;
  std::set<std::pair<dev_t, ino_t>> visited_;
};

// Display order: from the first zone on, then what sorts before it. Without that zone the order stays.
void Rotate(zq_List& sorted, zq_List& display) {
  zq_List back("Back Timezone List", kSourceTag, __LINE__);
  bool met = false;
  const auto move = [](zq_List& to, TimeZoneNode* node) {
    if (!to.AddTail(node)) FreeNode(node);
  };
  while (auto* const node = static_cast<TimeZoneNode*>(sorted.RemoveHead())) {
    met = met || std::strcmp(node->path, kFirstZone) == 0;
    move(met ? display : back, node);
  }
  while (auto* const node = static_cast<TimeZoneNode*>(back.RemoveHead())) move(display, node);
}

// Null when memory runs out.
char* NewZoneOfThisEdition() {
  const std::optional<std::string> edition = ReadDeviceFile(kEditionFile);
  return zq__newString(edition ? ZoneOfEdition(*edition) : kZoneWithoutEdition, kSourceTag, __LINE__);
}

// The list's description of a zone, else the path itself.
const char* DescriptionOf(const char* path, const zq_List* list) {
  if (list == nullptr) return path;
  for (const auto* place = list->First(); place != nullptr; place = list->Next(place)) {
    const auto* const node = static_cast<const TimeZoneNode*>(list->Record(place));
    if (node->description != nullptr && std::strcmp(node->path, path) == 0) return node->description;
  }
  return path;
}

}  // namespace

ZQDateTime::ZQDateTime(bool /*live*/) : timeZones(new zq_List("Timezone List", kSourceTag, __LINE__)) {
  zq_List sorted("Sorted Timezone List", ZQ_LIST_ASCENDING, ZQ_LIST_KEY_TEXT,
                 offsetof(TimeZoneNode, description), kSourceTag, __LINE__);
  ConstructTimeZoneTable(kZoneFolder, &sorted);
  ZQUTIL_TRACE("ZQUtil Timezone Node Count %d\n", static_cast<int>(sorted.Count()));
  Rotate(sorted, *timeZones);
}

ZQDateTime::~ZQDateTime() {
  while (auto* const node = static_cast<TimeZoneNode*>(timeZones->RemoveHead())) FreeNode(node);
  delete timeZones;
}

void ZQDateTime::ConstructTimeZoneTable(const char* directory, zq_List* list) try {
  if (directory == nullptr || list == nullptr) return;
  ZoneWalk(*list).Visit(directory);
} catch (const std::exception&) {
  ZQUTIL_TRACE("ZQUtil has no memory for the time zones\n");
}

zq_List* ZQDateTime::getTZList() {
  return timeZones;
}

char* ZQDateTime::getTZDesc() {
  OwnedText path(getTZ());
  if (path == nullptr || *path == '\0') path.reset(NewZoneOfThisEdition());
  char* description = nullptr;
  if (path != nullptr) {
    ZQUTIL_TRACE("ZQUtil querying list with %s\n", path.get());
    description = zq__newString(DescriptionOf(path.get(), timeZones), kSourceTag, __LINE__);
  }
  ZQUTIL_TRACE("ZQUtil returning TZDesc %s\n", description != nullptr ? description : "NULL");
  return description;
}
