#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <glob.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "probe.h"

namespace {

constexpr off_t kGivenLength = 6;

template <typename Stat, typename Call>
bool SeesGiven(Call call) {
  Stat facts{};
  return call(PROBE_GIVEN, &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_size == kGivenLength;
}

template <typename Stat, typename Call>
bool SeesLink(Call call) {
  Stat facts{};
  return call(PROBE_LINK, &facts) == 0 && S_ISLNK(facts.st_mode);
}

template <typename Facts, typename Call>
bool SeesVolume(Call call) {
  Facts facts{};
  return call(PROBE_FOLDER, &facts) == 0 && facts.f_blocks > 0;
}

template <typename Entry, typename Call>
bool ListsLeaf(Call call) {
  Entry** entries = nullptr;
  const int count = call(PROBE_TREE, &entries);
  std::string names;
  for (int i = 0; i < count; ++i) {
    if (entries[i]->d_name[0] != '.') names += entries[i]->d_name;
    free(entries[i]);
  }
  free(entries);
  return names == "leaf";
}

template <typename Result, typename Call, typename Free>
bool FindsLeaf(Call call, Free free) {
  Result result{};
  const bool found = call(PROBE_TREE "/l*", &result) == 0 && result.gl_pathc == 1 &&
                     strcmp(result.gl_pathv[0], PROBE_TREE "/leaf") == 0;
  free(&result);
  return found;
}

std::string walked;
template <typename Stat>
int Visit(const char* path, const Stat*, int, struct FTW* place) {
  walked += std::string(path) + "=" + (path + place->base) + ",";
  return 0;
}
constexpr const char* kWalk = PROBE_TREE "=tree," PROBE_TREE "/leaf=leaf,";

bool HearsChange() {
  const int watcher = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  const bool watches = inotify_add_watch(watcher, PROBE_TREE "/leaf", IN_OPEN) >= 0;
  const int leaf = open(Place(PROBE_TREE "/leaf").c_str(), O_RDONLY);
  char event[sizeof(inotify_event) + 256];
  const bool hears = watches && leaf >= 0 && read(watcher, event, sizeof(event)) > 0;
  close(leaf);
  close(watcher);
  return hears;
}

using OldStat = int(int, const char*, struct stat*);
using OldStat64 = int(int, const char*, struct stat64*);
using OldStatAt = int(int, int, const char*, struct stat*, int);
using OldStatAt64 = int(int, int, const char*, struct stat64*, int);

#define BY(call) [](const char* path, auto* facts) { return call; }

constexpr ProbeRow kRows[] = {
    {"stat", [] { return SeesGiven<struct stat>(BY(stat(path, facts))); }},
    {"stat64", [] { return SeesGiven<struct stat64>(BY(stat64(path, facts))); }},
    {"lstat", [] { return SeesLink<struct stat>(BY(lstat(path, facts))); }},
    {"lstat64", [] { return SeesLink<struct stat64>(BY(lstat64(path, facts))); }},
    {"fstatat", [] { return SeesGiven<struct stat>(BY(fstatat(AT_FDCWD, path, facts, 0))); }},
    {"fstatat64", [] { return SeesGiven<struct stat64>(BY(fstatat64(AT_FDCWD, path, facts, 0))); }},
    {"__xstat", [] { return SeesGiven<struct stat>(BY(Symbol<OldStat>("__xstat")(1, path, facts))); }},
    {"__xstat64",
     [] { return SeesGiven<struct stat64>(BY(Symbol<OldStat64>("__xstat64")(1, path, facts))); }},
    {"__lxstat", [] { return SeesLink<struct stat>(BY(Symbol<OldStat>("__lxstat")(1, path, facts))); }},
    {"__lxstat64",
     [] { return SeesLink<struct stat64>(BY(Symbol<OldStat64>("__lxstat64")(1, path, facts))); }},
    {"__fxstatat",
     [] { return SeesGiven<struct stat>(BY(Symbol<OldStatAt>("__fxstatat")(1, AT_FDCWD, path, facts, 0))); }},
    {"__fxstatat64",
     [] {
       return SeesGiven<struct stat64>(BY(Symbol<OldStatAt64>("__fxstatat64")(1, AT_FDCWD, path, facts, 0)));
     }},
    {"statx",
     [] {
       struct statx facts {};
       return statx(AT_FDCWD, PROBE_GIVEN, 0, STATX_SIZE, &facts) == 0 && facts.stx_size == kGivenLength;
     }},
    {"access", [] { return access(PROBE_GIVEN, R_OK) == 0; }},
    {"faccessat", [] { return faccessat(AT_FDCWD, PROBE_GIVEN, R_OK, 0) == 0; }},
    {"euidaccess", [] { return euidaccess(PROBE_GIVEN, R_OK) == 0; }},
    {"eaccess", [] { return eaccess(PROBE_GIVEN, R_OK) == 0; }},
    {"opendir",
     [] {
       DIR* folder = opendir(PROBE_FOLDER);
       return folder != nullptr && closedir(folder) == 0;
     }},
    {"scandir",
     [] {
       return ListsLeaf<dirent>(
           [](const char* path, dirent*** list) { return scandir(path, list, nullptr, alphasort); });
     }},
    {"scandir64",
     [] {
       return ListsLeaf<dirent64>(
           [](const char* path, dirent64*** list) { return scandir64(path, list, nullptr, alphasort64); });
     }},
    {"glob",
     [] {
       return FindsLeaf<glob_t>(
           [](const char* pattern, glob_t* found) { return glob(pattern, 0, nullptr, found); }, globfree);
     }},
    {"glob64",
     [] {
       return FindsLeaf<glob64_t>(
           [](const char* pattern, glob64_t* found) { return glob64(pattern, 0, nullptr, found); },
           globfree64);
     }},
    {"nftw",
     [] {
       walked.clear();
       return nftw(PROBE_TREE, Visit<struct stat>, 4, FTW_PHYS) == 0 && walked == kWalk;
     }},
    {"nftw64",
     [] {
       walked.clear();
       return nftw64(PROBE_TREE, Visit<struct stat64>, 4, FTW_PHYS) == 0 && walked == kWalk;
     }},
    {"statvfs", [] { return SeesVolume<struct statvfs>(BY(statvfs(path, facts))); }},
    {"statvfs64", [] { return SeesVolume<struct statvfs64>(BY(statvfs64(path, facts))); }},
    {"statfs", [] { return SeesVolume<struct statfs>(BY(statfs(path, facts))); }},
    {"statfs64", [] { return SeesVolume<struct statfs64>(BY(statfs64(path, facts))); }},
    {"pathconf", [] { return pathconf(PROBE_FOLDER, _PC_NAME_MAX) > 0; }},
    {"inotify_add_watch", HearsChange},
};

}  // namespace

std::span<const ProbeRow> LookRows() {
  return kRows;
}
