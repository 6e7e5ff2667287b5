// What the battery driver's numbers mean.
#ifndef ZQUTIL_POWER_STATUS_H
#define ZQUTIL_POWER_STATUS_H

#include <cstdint>

struct ChargeState {
  const char* trace;
  const char* name;
};

// The driver's charger state.
ChargeState ChargeStateOf(int32_t driverValue);

// Percent, 0 to 100, of a voltage in the driver's unit: 400 is full, 333 and below is empty, linear in
// between from 98 at 399 down to 1 at 334.
int32_t BatteryPercentOf(int32_t voltage);

#endif
