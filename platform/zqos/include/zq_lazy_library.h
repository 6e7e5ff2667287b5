// A library that is loaded by its first use: for one that is big and seldom needed, whose functions the user defines
// himself, under their own names, to pass on.
#ifndef ZQ_LAZY_LIBRARY_H
#define ZQ_LAZY_LIBRARY_H

#ifdef __cplusplus
#include <atomic>

#include "zq_api.h"

class ZQ_API zq_LazyLibrary {
 public:
  // Whose definition of a function is called: the library's; or the process's, where the program, what it is linked
  // with or a preloaded library has one, as for a library that is linked.
  enum Search { kLibraryAlone, kProcessFirst };

  // The name that programs built against it load; not copied.
  constexpr explicit zq_LazyLibrary(const char* name, Search search = kLibraryAlone)
      : name_(name), search_(search) {}
  zq_LazyLibrary(const zq_LazyLibrary&) = delete;
  zq_LazyLibrary& operator=(const zq_LazyLibrary&) = delete;

  // Loads it, once and for the process's life. False, with a trace, when it cannot be. Any thread.
  bool Load();
  // To be asked for after Load: ends the process, with a trace, when the library or the symbol is missing. Any thread.
  void* Symbol(const char* symbol);

 private:
  const char* const name_;
  const Search search_;
  std::atomic<void*> handle_ = nullptr;
};

// Defines a function of the library that passes on: result, name, parameters and arguments in parentheses.
#define ZQ_PASS_ON(library, result, function, parameters, arguments)                                \
  result function parameters {                                                                      \
    static auto* const real = reinterpret_cast<decltype(&(function))>((library).Symbol(#function)); \
    return real arguments;                                                                          \
  }

// As ZQ_PASS_ON; the function answers 0 where the library is missing.
#define ZQ_PASS_ON_OR_NOTHING(library, result, function, parameters, arguments)                     \
  result function parameters {                                                                      \
    if (!(library).Load()) return static_cast<result>(0);                                           \
    static auto* const real = reinterpret_cast<decltype(&(function))>((library).Symbol(#function)); \
    return real arguments;                                                                          \
  }

#endif
#endif
