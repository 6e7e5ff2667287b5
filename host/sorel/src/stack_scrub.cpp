#include "stack_scrub.h"

#include <cstring>

namespace sorel {

__attribute__((noinline)) void ScrubStack() {
  constexpr size_t kBytes = 65536;
  char words[kBytes];
  memset(words, 0, sizeof words);
  // Tells the compiler that somebody looks at the zeros.
  asm volatile("" : : "r"(words) : "memory");
}

}  // namespace sorel
