#include <exception>
#include <optional>

#include "record_line.h"
#include "record_queue.h"
#include "zq_clock.h"
#include "zqapplog.h"

int32_t ZQLogRegister(void* /*classObject*/) try {
  RecordQueue::Get().Begin();
  return 0;
} catch (const std::exception&) {
  return -1;
}

int32_t ZQLogApplicationActivity(const char* application, const char* action, const char* detail) try {
  if (application == nullptr || action == nullptr) return -1;
  const std::optional<std::string_view> more =
      detail != nullptr ? std::optional<std::string_view>(detail) : std::nullopt;
  return RecordQueue::Get().Take(RecordLine(zq_ClockGet()->Wall().tv_sec, application, action, more)) ? 0
                                                                                                      : -1;
} catch (const std::exception&) {
  return -1;
}

void ZQLogUnregister() {
  RecordQueue::Get().End();
}
