#include <cerrno>
#include <cstdlib>
#include <exception>
#include <system_error>

#include "platform_trace.h"
#include "thread_registry.h"
#include "zq_clock.h"
#include "zq_thread.h"

uint32_t zq__beginthread(zq_ThreadFunction function, void* argument, const zq_ThreadAttributes* attributes,
                         const char* file, int line) try {
  int error = EINVAL;
  const size_t stackBytes = attributes != nullptr ? attributes->stackBytes : 0;
  const uint32_t handle =
      function != nullptr ? ThreadRegistry::Get().Start(function, argument, stackBytes, &error) : 0;
  if (handle == 0) {
    PlatformFailure("no thread: %s (%s:%d)", std::generic_category().message(error).c_str(), SourceName(file),
                    line);
  }
  return handle;
} catch (const std::exception&) {
  PlatformFailure("no thread: no memory (%s:%d)", SourceName(file), line);
  return 0;
}

void zq_ThreadSetName(uint32_t thread, const char* name) {
  if (name != nullptr) ThreadRegistry::Get().SetName(thread, name);
}

bool zq_ThreadAwaitEnd(zq_ThreadFunction function, uint32_t milliseconds) {
  return ThreadRegistry::Get().AwaitEnd(function, milliseconds);
}

void zq__Sleep(uint32_t milliseconds, const char* /*file*/, int /*line*/) {
  zq_ClockGet()->Sleep(uint64_t{milliseconds} * 1'000'000);
}

// A trace line is with the system when zq_Trace returns: there is nothing left to flush.
void zq_ExitProcess(int status) {
  quick_exit(status);
}
