// The service table as a module keeps it: a copy of what the host gave, null where it gave nothing.
#ifndef SOREL_TEST_SERVICES_H
#define SOREL_TEST_SERVICES_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "engine.h"

namespace probe {

class Services {
 public:
  void Copy(const void* table, uint32_t bytes) {
    words_ = {};
    memcpy(words_.data(), table, std::min<size_t>(bytes, sizeof words_));
  }
  void* ClassObject() const { return reinterpret_cast<void*>(words_[ZQ_SLOT_CLASS_OBJECT]); }
  template <typename Service>
  Service Get(zq_EngineSlot slot) const {
    return reinterpret_cast<Service>(words_.at(slot));
  }

 private:
  std::array<uintptr_t, ZQ_ENGINE_SLOTS> words_{};
};

inline Services g_services;

inline void Log(const char* text) {
  g_services.Get<zq_HostLog>(ZQ_SLOT_HOST_LOG)(text);
}
inline const char* Text(zq_Value value) {
  uint32_t scratch = 0;
  return g_services.Get<zq_ValueToString>(ZQ_SLOT_VALUE_TO_STRING)(value, &scratch);
}
inline int32_t String(const char* text, zq_Value* value) {
  return g_services.Get<zq_NewString>(ZQ_SLOT_NEW_STRING)(text, static_cast<uint32_t>(strlen(text) + 1),
                                                          value);
}
inline int32_t Object(zq_Value value, void** object) {
  return g_services.Get<zq_ValueToObject>(ZQ_SLOT_VALUE_TO_OBJECT)(value, object);
}
inline int32_t Call(void* object, const char* name, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  return g_services.Get<zq_CallMethod>(ZQ_SLOT_CALL_METHOD)(object, name, argc, argv, rval);
}
inline int32_t SetProperty(void* object, const char* name, zq_Value value) {
  return g_services.Get<zq_SetProperty>(ZQ_SLOT_SET_PROPERTY)(object, name, &value);
}
inline zq_Value ValueOf(void* object) {
  return reinterpret_cast<zq_Value>(object);
}

}  // namespace probe

#endif
