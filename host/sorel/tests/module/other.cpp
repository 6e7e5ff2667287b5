// A second class module, which copies ten slots of the table only: its method counts its arguments.
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "services.h"

#define OTHER_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr uint32_t kSlots = 10;
zq_SetFinalizer g_setFinalizer = nullptr;

void Say(const char* line) {
  if (getenv("PROBE_SAY") != nullptr && write(STDERR_FILENO, line, strlen(line)) < 0) return;
}

int32_t Finalizer(void*) {
  Say("other finalizer\n");
  return 1;
}

int32_t Constructor(void* self, uint32_t, zq_Value*, zq_Value*) {
  return g_setFinalizer(self, Finalizer);
}

int32_t Answer(void*, uint32_t argc, zq_Value*, zq_Value* rval) {
  const bool known = probe::g_services.Get<zq_NewString>(ZQ_SLOT_NEW_STRING) != nullptr;
  *rval = ZQ_VALUE_FROM_INT(known ? 0 : argc);
  return 1;
}

}  // namespace

OTHER_EXPORT void MM_Load() {}
OTHER_EXPORT void MM_Unload() {}

OTHER_EXPORT int32_t MM_InitWrapper(void* table, uint32_t bytes) {
  if (bytes != ZQ_ENGINE_SLOTS * sizeof(void*)) Say("a table of another length\n");
  g_setFinalizer = static_cast<zq_SetFinalizer*>(table)[ZQ_SLOT_SET_FINALIZER];
  probe::g_services.Copy(table, kSlots * sizeof(void*));
  const auto define = probe::g_services.Get<zq_DefineMethod>(ZQ_SLOT_DEFINE_METHOD);
  define(probe::g_services.ClassObject(), "constructor", Constructor, 0);
  define(probe::g_services.ClassObject(), "answer", Answer, 0);
  Say("other init\n");
  // What a module without its optional library answers.
  return 0;
}

OTHER_EXPORT int32_t MM_TermWrapper() {
  Say("other term\n");
  return 1;
}
