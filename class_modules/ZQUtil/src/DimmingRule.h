// How the backlight follows the light: a small change only after the light has been steady for a while, a
// large one at once, as a ramp.
//
//   reading              counter 0..9    10                        11         after
//   within 20            count it        write its level, count    nothing    applied: as written
//   more than 20 off     a level for each reading on the way, paced, the      applied: the reading,
//                        last one left out                                    counter 0
//
// The level of the reading at a ramp's end is written by the steady rule: a light that moves on meanwhile
// needs no step back.
#ifndef ZQUTIL_DIMMING_RULE_H
#define ZQUTIL_DIMMING_RULE_H

#include <cstdint>

// What the rule remembers from one reading to the next.
struct DimmingHistory {
  uint32_t applied = 0;  // the reading last applied, 0 to 65535
  uint32_t steady = 0;   // steady readings in a row since the last ramp, 0 to 11
};

// What one reading asks for: `writes` levels, those of the readings first, first + step, first + 2 * step,
// ...
struct DimmingPlan {
  uint32_t writes = 0;
  uint32_t first = 0;
  int32_t step = 0;
  bool paced = false;    // a pause after each write
  DimmingHistory after;  // in force when all is written

  // The level of write `index`, counted from 0.
  uint32_t Level(uint32_t index) const;
};

// Backlight level of a light reading: three quarters of it.
constexpr uint32_t DimmingLevel(uint32_t reading) {
  return (3 * reading) >> 2;
}

// The plan for a reading, 0 to 65535.
DimmingPlan PlanDimming(uint32_t reading, const DimmingHistory& before);

#endif
