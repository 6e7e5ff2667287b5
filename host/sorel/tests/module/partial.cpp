// A library that lacks one of the entry points of a class module.
#include <cstdint>

#define PARTIAL_EXPORT extern "C" __attribute__((visibility("default")))

PARTIAL_EXPORT void MM_Load() {}
PARTIAL_EXPORT void MM_Unload() {}
PARTIAL_EXPORT int32_t MM_InitWrapper(void*, uint32_t) {
  return 1;
}
