#include <new>

#include "msgq_loop.h"
#include "platform_trace.h"
#include "zq_timer.h"

int32_t zq_TimerSet(uint32_t queue, uint32_t milliseconds, uint32_t id, uintptr_t param,
                    uint32_t /*reserved1*/, uint32_t /*reserved2*/, const char* name, bool repeat) try {
  const std::shared_ptr<MsgqLoop> loop = QueueHandles().Find(queue);
  return loop != nullptr && loop->Arm(id, milliseconds, param, name, repeat) ? 1 : 0;
} catch (const std::bad_alloc&) {
  PlatformFailure("no memory for timer \"%s\"", name == nullptr ? "" : name);
  return 0;
}

int32_t zq_TimerKill(uint32_t queue, uint32_t id, uint32_t /*reserved1*/, uint32_t /*reserved2*/) {
  const std::shared_ptr<MsgqLoop> loop = QueueHandles().Find(queue);
  return loop != nullptr && loop->Disarm(id) ? 1 : 0;
}

uint32_t zq_TimerTimeRemaining(uint32_t queue, uint32_t id, uint32_t /*reserved1*/, uint32_t /*reserved2*/) {
  const std::shared_ptr<MsgqLoop> loop = QueueHandles().Find(queue);
  return loop == nullptr ? ZQ_TIMER_NOT_ARMED : loop->TimerRemaining(id);
}

uint32_t zq_TimerNextDue(uint32_t queue) {
  const std::shared_ptr<MsgqLoop> loop = QueueHandles().Find(queue);
  return loop == nullptr ? ZQ_TIMER_NOT_ARMED : loop->NextTimerRemaining();
}
