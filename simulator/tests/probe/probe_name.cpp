#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string_view>

#include "probe.h"

namespace {

// Takes an allocated text.
bool Is(char* text, std::string_view expected) {
  const bool same = text != nullptr && text == expected;
  free(text);
  return same;
}

template <typename Call>
bool ReadsLink(Call call) {
  char target[PATH_MAX];
  const ssize_t length = call(PROBE_LINK, target, sizeof(target));
  return length >= 0 && std::string_view(target, static_cast<size_t>(length)) == PROBE_GIVEN;
}

bool StandsInFolder() {
  return chdir(PROBE_FOLDER) == 0 && OnDevice(PROBE_FOLDER) && access("given", R_OK) == 0;
}

#define READS(call) [] { return ReadsLink([](const char* path, char* text, size_t size) { return call; }); }

using CheckedPath = char*(const char*, char*, size_t);
using CheckedLink = ssize_t(const char*, char*, size_t, size_t);
using CheckedLinkAt = ssize_t(int, const char*, char*, size_t, size_t);
using CheckedFolder = char*(char*, size_t, size_t);

constexpr ProbeRow kRows[] = {
    {"realpath", [] { return Is(realpath(PROBE_LINK, nullptr), PROBE_GIVEN); }},
    {"canonicalize_file_name", [] { return Is(canonicalize_file_name(PROBE_LINK), PROBE_GIVEN); }},
    {"__realpath_chk",
     [] {
       char path[PATH_MAX];
       return Symbol<CheckedPath>("__realpath_chk")(PROBE_LINK, path, sizeof(path)) == path &&
              std::string_view(path) == PROBE_GIVEN;
     }},
    {"readlink", READS(readlink(path, text, size))},
    {"readlinkat", READS(readlinkat(AT_FDCWD, path, text, size))},
    {"__readlink_chk", READS(Symbol<CheckedLink>("__readlink_chk")(path, text, size, size))},
    {"__readlinkat_chk", READS(Symbol<CheckedLinkAt>("__readlinkat_chk")(AT_FDCWD, path, text, size, size))},
    {"chdir", StandsInFolder},
    {"getcwd", [] { return StandsInFolder() && Is(getcwd(nullptr, 0), PROBE_FOLDER); }},
    {"get_current_dir_name", [] { return StandsInFolder() && Is(get_current_dir_name(), PROBE_FOLDER); }},
    {"__getcwd_chk",
     [] {
       char path[PATH_MAX];
       return StandsInFolder() &&
              Symbol<CheckedFolder>("__getcwd_chk")(path, sizeof(path), sizeof(path)) == path &&
              std::string_view(path) == PROBE_FOLDER;
     }},
};

}  // namespace

std::span<const ProbeRow> NameRows() {
  return kRows;
}
