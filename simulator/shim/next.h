// The function that a hook stands before: the next one of that name in the order of libraries, so that
// sanitizers and other preloaded libraries keep their place.
//
// ZQSIM_NEXT(open) at namespace scope declares the slot, NEXT(open)(...) calls through it. All slots are
// filled when the library is loaded, so that a hook looks nothing up in a signal handler; one that is called
// even earlier, by another library's constructor, fills its slot itself.
#ifndef ZQSIM_NEXT_H
#define ZQSIM_NEXT_H

#include <atomic>

struct NextFunction {
  const char* name;
  std::atomic<void*> address{nullptr};

  void* Address() {
    void* found = address.load(std::memory_order_acquire);
    return found != nullptr ? found : Find();
  }
  void* Find();
};

#define ZQSIM_NEXT(function)                                                                   \
  namespace {                                                                                  \
  [[gnu::section("zqsim_next"), gnu::used]] constinit NextFunction next_##function{#function}; \
  }
#define NEXT(function) reinterpret_cast<decltype(&::function)>(next_##function.Address())

// Marks what the library gives to the process in libc's place.
#define ZQSIM_HOOK extern "C" __attribute__((visibility("default")))

#endif
