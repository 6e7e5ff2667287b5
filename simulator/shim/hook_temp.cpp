// Files and folders that get a name of their own: the last six characters of the pattern, before a suffix.
#include <cstdlib>
#include <cstring>

#include "mapped_path.h"
#include "next.h"

ZQSIM_NEXT(mkostemps)
ZQSIM_NEXT(mkostemps64)
ZQSIM_NEXT(mkdtemp)

namespace {

constexpr size_t kOwnLetters = 6;

// Calls `make` with the mapped pattern, to write the letters into; gives what it made of them to the caller's
// pattern. The end of the pattern is the same in both.
template <typename Make, typename Result>
Result MakeNamed(char* pattern, size_t suffix, Result failed, Make make) {
  const MappedPath at(pattern, Use::kCreate);
  if (!at.Ok()) return failed;
  if (!at.OnDevice()) return make(pattern);
  char mapped[PATH_MAX];
  const size_t length = strlen(at.Text());
  memcpy(mapped, at.Text(), length + 1);
  const Result made = make(mapped);
  const size_t end = kOwnLetters + suffix;
  if (made != failed) memcpy(pattern + strlen(pattern) - end, mapped + length - end, kOwnLetters);
  return made;
}

template <typename Next>
int MakeFile(Next next, char* pattern, int suffix, int flags) {
  return MakeNamed(pattern, static_cast<size_t>(suffix), -1,
                   [=](char* text) { return next(text, suffix, flags); });
}

}  // namespace

ZQSIM_HOOK int mkstemp(char* pattern) {
  return MakeFile(NEXT(mkostemps), pattern, 0, 0);
}
ZQSIM_HOOK int mkstemp64(char* pattern) {
  return MakeFile(NEXT(mkostemps64), pattern, 0, 0);
}
ZQSIM_HOOK int mkostemp(char* pattern, int flags) {
  return MakeFile(NEXT(mkostemps), pattern, 0, flags);
}
ZQSIM_HOOK int mkostemp64(char* pattern, int flags) {
  return MakeFile(NEXT(mkostemps64), pattern, 0, flags);
}
ZQSIM_HOOK int mkstemps(char* pattern, int suffix) {
  return MakeFile(NEXT(mkostemps), pattern, suffix, 0);
}
ZQSIM_HOOK int mkstemps64(char* pattern, int suffix) {
  return MakeFile(NEXT(mkostemps64), pattern, suffix, 0);
}
ZQSIM_HOOK int mkostemps(char* pattern, int suffix, int flags) {
  return MakeFile(NEXT(mkostemps), pattern, suffix, flags);
}
ZQSIM_HOOK int mkostemps64(char* pattern, int suffix, int flags) {
  return MakeFile(NEXT(mkostemps64), pattern, suffix, flags);
}

ZQSIM_HOOK char* mkdtemp(char* pattern) noexcept {
  char* const none = nullptr;
  return MakeNamed(pattern, 0, none, [](char* text) { return NEXT(mkdtemp)(text); }) == nullptr ? nullptr
                                                                                                : pattern;
}
