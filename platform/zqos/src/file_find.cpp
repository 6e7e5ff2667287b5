#include <dirent.h>
#include <sys/stat.h>

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "file_pattern.h"
#include "zq_file.h"

struct zq_Find {
  explicit zq_Find(const char* pattern)
      : split(SplitPattern(pattern)), folder(opendir(split.folder.c_str())) {}
  zq_Find(const zq_Find&) = delete;
  zq_Find& operator=(const zq_Find&) = delete;
  ~zq_Find() {
    if (folder != nullptr) closedir(folder);
  }

  FilePattern split;
  DIR* folder;
};

namespace {

bool IsDirectory(DIR* folder, const dirent& entry) {
  if (entry.d_type == DT_DIR) return true;
  if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return false;
  struct stat status {};
  return fstatat(dirfd(folder), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

zq_Find* zq_FindFirstFile(const char* pattern, zq_FindData* data) try {
  if (pattern == nullptr || data == nullptr) return nullptr;
  auto find = std::make_unique<zq_Find>(pattern);
  return zq_FindNextFile(find.get(), data) ? find.release() : nullptr;
} catch (const std::exception&) {
  return nullptr;
}

bool zq_FindNextFile(zq_Find* find, zq_FindData* data) {
  if (find == nullptr || data == nullptr || find->folder == nullptr) return false;
  while (const dirent* entry = readdir(find->folder)) {
    if (!NameMatches(find->split.names, entry->d_name)) continue;
    data->name[std::string_view(entry->d_name).copy(data->name, sizeof data->name - 1)] = '\0';
    data->isDirectory = IsDirectory(find->folder, *entry);
    return true;
  }
  return false;
}

void zq_FindClose(zq_Find* find) {
  delete find;
}
