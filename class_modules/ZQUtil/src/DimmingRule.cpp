#include "DimmingRule.h"

#include <cstdlib>

namespace {

constexpr int32_t kSteadyWithin = 20;
constexpr uint32_t kSteadyReadings = 10;

}  // namespace

uint32_t DimmingPlan::Level(uint32_t index) const {
  return DimmingLevel(first + index * static_cast<uint32_t>(step));
}

DimmingPlan PlanDimming(uint32_t reading, const DimmingHistory& before) {
  const auto change = static_cast<int32_t>(reading - before.applied);
  DimmingPlan plan;
  plan.after = before;
  if (std::abs(change) > kSteadyWithin) {
    plan.writes = static_cast<uint32_t>(std::abs(change));
    plan.first = before.applied;
    plan.step = change > 0 ? 1 : -1;
    plan.paced = true;
    plan.after = {reading, 0};
  } else if (before.steady == kSteadyReadings) {
    plan.writes = 1;
    plan.first = reading;
    plan.after = {reading, kSteadyReadings + 1};
  } else if (before.steady < kSteadyReadings) {
    ++plan.after.steady;
  }
  return plan;
}
