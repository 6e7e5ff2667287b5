// A class module of your own: scripts get the class Lamp, by this file's name without its ending.
//
//   c++ -std=c++20 -shared -fPIC $(pkg-config --cflags zqutil) Lamp.cpp -o Lamp.so
//   sorel --module ./Lamp.so script.js
//
//   const lamp = new Lamp();
//   lamp.set(40);
//   print(lamp.get(), lamp.name());  // 40 lamp
//
// With --module ZQUtil is there only when it is named, too: --module $(pkg-config --variable=moduledir zqutil)/ZQUtil.so

#include <engine.h>

#include <cstring>
#include <vector>

namespace {

std::vector<uintptr_t> g_services;

// The host's service of that slot; null when the host lacks it.
template <typename Service>
Service Get(zq_EngineSlot slot) {
  return slot < g_services.size() ? reinterpret_cast<Service>(g_services[slot]) : nullptr;
}

struct Lamp {
  int32_t level = 0;  // percent
};

Lamp* LampOf(void* self) {
  void* lamp = nullptr;
  Get<zq_GetPrivate>(ZQ_SLOT_GET_PRIVATE)(self, &lamp);
  return static_cast<Lamp*>(lamp);
}

// On the script thread, after the script's object was collected or when the host ends.
int32_t End(void* self) {
  delete LampOf(self);
  return 1;
}

int32_t Construct(void* self, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  void* lamp = new Lamp;
  Get<zq_SetPrivate>(ZQ_SLOT_SET_PRIVATE)(self, &lamp);
  return Get<zq_SetFinalizer>(ZQ_SLOT_SET_FINALIZER)(self, End);
}

// 0 is thrown to the script as "Lamp.set failed".
int32_t Set(void* self, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  int32_t level = 0;
  Lamp* const lamp = LampOf(self);
  if (lamp == nullptr || argc != 1 || Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[0], &level) == 0)
    return 0;
  lamp->level = level;
  return 1;
}

int32_t GetLevel(void* self, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  const Lamp* const lamp = LampOf(self);
  if (lamp == nullptr) return 0;
  *rval = ZQ_VALUE_FROM_INT(lamp->level);
  return 1;
}

int32_t Name(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  static constexpr char kName[] = "lamp";
  // The length counts the byte that ends the text.
  return Get<zq_NewString>(ZQ_SLOT_NEW_STRING)(kName, sizeof kName, rval);
}

}  // namespace

// Entry points have C names. The host calls them in this order, on the script thread.
extern "C" {

void MM_Load() {}

int32_t MM_InitWrapper(void* table, uint32_t bytes) {
  g_services.resize(bytes / sizeof(uintptr_t));
  memcpy(g_services.data(), table, g_services.size() * sizeof(uintptr_t));
  const auto define = Get<zq_DefineMethod>(ZQ_SLOT_DEFINE_METHOD);
  void* const lampClass = Get<void*>(ZQ_SLOT_CLASS_OBJECT);
  if (define == nullptr || lampClass == nullptr) return 0;
  define(lampClass, "constructor", Construct, 0);
  define(lampClass, "set", Set, 1);
  define(lampClass, "get", GetLevel, 0);
  define(lampClass, "name", Name, 0);
  return 1;
}

int32_t MM_TermWrapper() {
  return 1;
}

void MM_Unload() {}
}
