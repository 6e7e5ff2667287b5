#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "probe.h"

namespace {

constexpr mode_t kMode = 0644;

bool StreamReadsGiven(FILE* stream) {
  if (stream == nullptr) return false;
  const bool reads = ReadsGiven(dup(fileno(stream)));
  fclose(stream);
  return reads;
}

FILE* Anything() {
  return fopen("/dev/null", "r");
}

template <typename Open>
bool Creates(Open call) {
  const std::string path = Fresh();
  const int descriptor = call(path.c_str());
  struct stat facts;
  const bool made =
      descriptor >= 0 && OnDevice(path) && fstat(descriptor, &facts) == 0 && (facts.st_mode & 0777) == kMode;
  if (descriptor >= 0) close(descriptor);
  return made;
}

template <typename Make>
bool NamesItself(const char* suffix, Make make) {
  std::string pattern = Fresh() + "XXXXXX" + suffix;
  const std::string before = pattern;
  const int descriptor = make(pattern.data());
  if (descriptor < 0) return false;
  close(descriptor);
  return pattern != before && pattern.size() == before.size() && pattern.ends_with(suffix) &&
         OnDevice(pattern);
}

constexpr ProbeRow kRows[] = {
    {"open",
     [] {
       return ReadsGiven(open(PROBE_GIVEN, O_RDONLY)) &&
              Creates([](const char* path) { return open(path, O_CREAT | O_WRONLY, kMode); });
     }},
    {"open64",
     [] {
       return ReadsGiven(open64(PROBE_GIVEN, O_RDONLY)) &&
              Creates([](const char* path) { return open64(path, O_CREAT | O_WRONLY, kMode); });
     }},
    {"openat",
     [] {
       return ReadsGiven(openat(AT_FDCWD, PROBE_GIVEN, O_RDONLY)) &&
              Creates([](const char* path) { return openat(AT_FDCWD, path, O_CREAT | O_WRONLY, kMode); });
     }},
    {"openat64",
     [] {
       return ReadsGiven(openat64(AT_FDCWD, PROBE_GIVEN, O_RDONLY)) &&
              Creates([](const char* path) { return openat64(AT_FDCWD, path, O_CREAT | O_WRONLY, kMode); });
     }},
    {"creat", [] { return Creates([](const char* path) { return creat(path, kMode); }); }},
    {"creat64", [] { return Creates([](const char* path) { return creat64(path, kMode); }); }},
    {"__open_2", [] { return ReadsGiven(Symbol<int(const char*, int)>("__open_2")(PROBE_GIVEN, O_RDONLY)); }},
    {"__open64_2",
     [] { return ReadsGiven(Symbol<int(const char*, int)>("__open64_2")(PROBE_GIVEN, O_RDONLY)); }},
    {"__openat_2",
     [] {
       return ReadsGiven(Symbol<int(int, const char*, int)>("__openat_2")(AT_FDCWD, PROBE_GIVEN, O_RDONLY));
     }},
    {"__openat64_2",
     [] {
       return ReadsGiven(Symbol<int(int, const char*, int)>("__openat64_2")(AT_FDCWD, PROBE_GIVEN, O_RDONLY));
     }},
    {"fopen", [] { return StreamReadsGiven(fopen(PROBE_GIVEN, "r")); }},
    {"fopen64", [] { return StreamReadsGiven(fopen64(PROBE_GIVEN, "r")); }},
    {"freopen", [] { return StreamReadsGiven(freopen(PROBE_GIVEN, "r", Anything())); }},
    {"freopen64", [] { return StreamReadsGiven(freopen64(PROBE_GIVEN, "r", Anything())); }},
    {"mkstemp", [] { return NamesItself("", [](char* text) { return mkstemp(text); }); }},
    {"mkstemp64", [] { return NamesItself("", [](char* text) { return mkstemp64(text); }); }},
    {"mkostemp", [] { return NamesItself("", [](char* text) { return mkostemp(text, O_CLOEXEC); }); }},
    {"mkostemp64", [] { return NamesItself("", [](char* text) { return mkostemp64(text, O_CLOEXEC); }); }},
    {"mkstemps", [] { return NamesItself(".ini", [](char* text) { return mkstemps(text, 4); }); }},
    {"mkstemps64", [] { return NamesItself(".ini", [](char* text) { return mkstemps64(text, 4); }); }},
    {"mkostemps",
     [] { return NamesItself(".ini", [](char* text) { return mkostemps(text, 4, O_CLOEXEC); }); }},
    {"mkostemps64",
     [] { return NamesItself(".ini", [](char* text) { return mkostemps64(text, 4, O_CLOEXEC); }); }},
    {"mkdtemp",
     [] {
       return NamesItself(
           "", [](char* text) { return mkdtemp(text) == text ? open(text, O_RDONLY | O_DIRECTORY) : -1; });
     }},
};

}  // namespace

std::span<const ProbeRow> OpenRows() {
  return kRows;
}
