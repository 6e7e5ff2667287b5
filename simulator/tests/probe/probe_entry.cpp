#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "probe.h"

namespace {

// A new file of the device.
std::string File() {
  const std::string path = Fresh();
  close(open(path.c_str(), O_CREAT | O_WRONLY, 0644));
  return OnDevice(path) ? path : "";
}

std::string Folder() {
  const std::string path = Fresh();
  mkdir(path.c_str(), 0755);
  return OnDevice(path) ? path : "";
}

template <typename Call>
bool Makes(Call call) {
  const std::string path = Fresh();
  return call(path.c_str()) == 0 && OnDevice(path);
}

template <typename Call>
bool Removes(const std::string& path, Call call) {
  return !path.empty() && call(path.c_str()) == 0 && !OnDevice(path);
}

template <typename Call>
bool Moves(Call call) {
  const std::string from = File();
  const std::string to = Fresh();
  return !from.empty() && call(from.c_str(), to.c_str()) == 0 && !OnDevice(from) && OnDevice(to);
}

template <typename Call>
bool Links(Call call) {
  const std::string path = Fresh();
  return call(PROBE_GIVEN, path.c_str()) == 0 && ReadsGiven(open(path.c_str(), O_RDONLY));
}

#define MAKES(call) [] { return Makes([](const char* path) { return call; }); }
#define REMOVES(what, call) [] { return Removes(what, [](const char* path) { return call; }); }
#define MOVES(call) [] { return Moves([](const char* from, const char* to) { return call; }); }
#define LINKS(call) [] { return Links([](const char* from, const char* to) { return call; }); }

constexpr ProbeRow kRows[] = {
    {"unlink", REMOVES(File(), unlink(path))},
    {"unlinkat", REMOVES(File(), unlinkat(AT_FDCWD, path, 0))},
    {"remove", REMOVES(File(), remove(path))},
    {"rmdir", REMOVES(Folder(), rmdir(path))},
    {"rename", MOVES(rename(from, to))},
    {"renameat", MOVES(renameat(AT_FDCWD, from, AT_FDCWD, to))},
    {"renameat2", MOVES(renameat2(AT_FDCWD, from, AT_FDCWD, to, 0))},
    {"link", LINKS(link(from, to))},
    {"linkat", LINKS(linkat(AT_FDCWD, from, AT_FDCWD, to, 0))},
    {"symlink", LINKS(symlink(from, to))},
    {"symlinkat", LINKS(symlinkat(from, AT_FDCWD, to))},
    {"mkdir", MAKES(mkdir(path, 0755))},
    {"mkdirat", MAKES(mkdirat(AT_FDCWD, path, 0755))},
    {"mkfifo", MAKES(mkfifo(path, 0644))},
    {"mkfifoat", MAKES(mkfifoat(AT_FDCWD, path, 0644))},
    {"mknod", MAKES(mknod(path, S_IFREG | 0644, 0))},
    {"mknodat", MAKES(mknodat(AT_FDCWD, path, S_IFREG | 0644, 0))},
};

}  // namespace

std::span<const ProbeRow> EntryRows() {
  return kRows;
}
