// The rule of the clock-drift guard: may the host live on with the clock as it is now?
#ifndef ZQUTIL_TIME_DRIFT_H
#define ZQUTIL_TIME_DRIFT_H

#include <cstdint>

constexpr uint32_t kTimeDriftPeriodMs = 5000;
constexpr uint32_t kTimeDriftLimitSeconds = 600;

// Two readings, in seconds into the month, of checks that follow each other. True when the clock went back
// (the turn of the month is that too) or jumped ahead by more than the limit: the host's timers do not
// survive that, so the process ends and is started again with a consistent clock. `last` 0 is no reading.
constexpr bool ClockDrifted(uint32_t last, uint32_t now) {
  return last != 0 && (now < last || now > last + kTimeDriftLimitSeconds);
}

#endif
