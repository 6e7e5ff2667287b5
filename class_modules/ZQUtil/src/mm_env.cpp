#include "mm_env.h"

uintptr_t mmEnv[ZQ_ENGINE_SLOTS];
void* gLibObj = nullptr;

void engine::HostLog(const char* text) {
  if (const auto log = Slot<zq_HostLog>(ZQ_SLOT_HOST_LOG)) log(text);
}
