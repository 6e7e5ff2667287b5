// Stands for the application-log library: notes what it is asked.
#include <cstdint>
#include <string>

#define STUB_API __attribute__((visibility("default")))

extern "C" {

extern STUB_API void* stubRegistered;
void* stubRegistered = nullptr;
extern STUB_API int32_t stubUnregistered;
int32_t stubUnregistered = 0;

extern STUB_API std::string stubRecords;
std::string stubRecords;

STUB_API int32_t ZQLogRegister(void* classObject) {
  stubRegistered = classObject;
  return 4711;
}

STUB_API void ZQLogUnregister() {
  ++stubUnregistered;
}

// Each record a line: "application|action|detail", "<null>" for a missing detail.
STUB_API int32_t ZQLogApplicationActivity(const char* application, const char* action, const char* detail) {
  stubRecords +=
      std::string(application) + "|" + action + "|" + (detail != nullptr ? detail : "<null>") + "\n";
  return 1;
}

}  // extern "C"
