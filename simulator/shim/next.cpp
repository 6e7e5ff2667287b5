#include "next.h"

#include <dlfcn.h>

// The bounds of the section that holds the slots; the linker's.
extern "C" NextFunction __start_zqsim_next[] __attribute__((visibility("hidden")));
extern "C" NextFunction __stop_zqsim_next[] __attribute__((visibility("hidden")));

void* NextFunction::Find() {
  void* found = dlsym(RTLD_NEXT, name);
  if (found != nullptr) address.store(found, std::memory_order_release);
  return found;
}

namespace {

[[gnu::constructor]] void FillSlots() {
  for (NextFunction* slot = __start_zqsim_next; slot != __stop_zqsim_next; ++slot) slot->Address();
}

}  // namespace
