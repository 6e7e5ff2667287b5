#include "ZQUtilEntryPoints.h"

#include "ZQUtilMethodTable.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "listeners.h"
#include "mm_env.h"
#include "zq_file.h"

void* zqUtil_applogLib = nullptr;

void MM_Load() {
  engine::HostLog("ZQUtil MM_Load start\n");
  engine::HostLog("ZQUtil MM_Load end\n");
}

void MM_Unload() {
  engine::HostLog("ZQUtil MM_Unload start\n");
  engine::HostLog("ZQUtil MM_Unload end\n");
}

int32_t MM_InitWrapper(void* table, uint32_t bytes) {
  const auto* words = static_cast<const uintptr_t*>(table);
  // A word counts as supplied when it begins below the table's end; hosts keep their tables in whole words.
  const uint32_t supplied =
      words != nullptr ? bytes / sizeof(uintptr_t) + (bytes % sizeof(uintptr_t) != 0) : 0;
  for (uint32_t slot = 0; slot < ZQ_ENGINE_SLOTS; ++slot) mmEnv[slot] = slot < supplied ? words[slot] : 0;
  return MM_Init(engine::Slot<void*>(ZQ_SLOT_CLASS_OBJECT));
}

int32_t MM_Init(void* classObject) {
  ZQUTIL_TRACE("ZQUtil MM_Init\n");
  for (uint32_t row = 0; row < kZQUtilMethodCount; ++row) {
    // Read again before every row: defining a method may run the host's code, which may change its mind.
    const auto defineMethod = engine::DefineMethod();
    if (defineMethod == nullptr) break;
    const ZQUtilMethod& method = kZQUtilMethods[row];
    defineMethod(classObject, method.scriptName, method.native, method.declared);
  }
  gLibObj = classObject;
  OpenWorkerRequests();
  zqUtil_applogLib = zq_LoadLibrary("libzqapplog.so");
  if (zqUtil_applogLib == nullptr) return 0;
  const auto logRegister =
      reinterpret_cast<int32_t (*)(void*)>(zq_GetProcAddress(zqUtil_applogLib, "ZQLogRegister"));
  return logRegister != nullptr ? logRegister(classObject) : 0;
}

int32_t MM_TermWrapper() {
  return MM_Term(engine::Slot<void*>(ZQ_SLOT_CLASS_OBJECT));
}

int32_t MM_Term(void* /*classObject*/) {
  engine::HostLog("ZQUtil MM_Term start\n");
  CloseWorkerRequests();
  AwaitConfigWrites();
  if (zqUtil_applogLib != nullptr) {
    const auto logUnregister =
        reinterpret_cast<void (*)()>(zq_GetProcAddress(zqUtil_applogLib, "ZQLogUnregister"));
    if (logUnregister != nullptr) logUnregister();
    zq_FreeLibrary(zqUtil_applogLib);
    zqUtil_applogLib = nullptr;
  }
  engine::HostLog("ZQUtil MM_Term end\n");
  return 0;
}
