// Stands for an installed application-log library: notes what it is asked.
#include <cstdint>

#define STUB_API __attribute__((visibility("default")))

extern "C" {

extern STUB_API void* stubRegistered;
void* stubRegistered = nullptr;
extern STUB_API int32_t stubUnregistered;
int32_t stubUnregistered = 0;

STUB_API int32_t ZQLogRegister(void* classObject) {
  stubRegistered = classObject;
  return 4711;
}

STUB_API void ZQLogUnregister() {
  ++stubUnregistered;
}

STUB_API int32_t ZQLogApplicationActivity(const char* /*application*/, const char* /*action*/,
                                          const char* /*detail*/) {
  return 1;
}

}  // extern "C"
