#include "PowerStatus.h"

ChargeState ChargeStateOf(int32_t driverValue) {
  switch (driverValue) {
    case 4:
    case 5:
    case 6:
    case 9:
    case 12:
    case 18:
      return {"Precharge\n", "precharge"};
    case 7:
    case 10:
    case 13:
    case 19:
    case 20:
      return {"Charge Stop\n", "chargestop"};
    case 8:
    case 11:
      return {"Quick Charge\n", "quickcharge"};
    case 0:
    case 1:
    case 2:
    case 3:
      return {"Battery\n", "battery"};
    default:
      return {"Charge Complete or Default\n", "chargecomplete"};
  }
}

int32_t BatteryPercentOf(int32_t voltage) {
  constexpr int32_t kFull = 400;
  constexpr int32_t kEmpty = 333;
  if (voltage >= kFull) return 100;
  if (voltage <= kEmpty) return 0;
  const double missing = static_cast<double>(kFull - voltage) / (kFull - kEmpty);
  return static_cast<int32_t>(100.0 + missing * -100.0);
}
