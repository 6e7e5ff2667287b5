// Calls whose path is their first argument, or follows a folder's descriptor, and that fail with -1.
#ifndef ZQSIM_CALL_H
#define ZQSIM_CALL_H

#include "mapped_path.h"
#include "next.h"

template <Use use, typename Next, typename... Rest>
auto Call(Next next, const char* path, Rest... rest) -> decltype(next(path, rest...)) {
  const MappedPath at(path, use);
  if (!at.Ok()) return -1;
  return next(at.Text(), rest...);
}

template <Use use, typename Next, typename... Rest>
int CallAt(Next next, int folder, const char* path, Rest... rest) {
  const MappedPath at(path, use);
  return at.Ok() ? next(folder, at.Text(), rest...) : -1;
}

// Where a function that looks at a path puts what it found.
template <typename Found>
Found* FoundBy(int (*look)(const char*, Found*));

// Stands before such a function.
#define ZQSIM_LOOK(function)                                                                 \
  ZQSIM_NEXT(function)                                                                       \
  ZQSIM_HOOK int function(const char* path, decltype(FoundBy(&::function)) found) noexcept { \
    return Call<Use::kLook>(NEXT(function), path, found);                                    \
  }

#endif
