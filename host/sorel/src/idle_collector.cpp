#include "idle_collector.h"

#include <algorithm>

namespace sorel {

Instant IdleCollector::NextDue(Instant now, size_t objects) const {
  if (objects == 0 || step_ >= kPauses.size()) return kNever;
  if (last_ == 0) return now;
  return last_ + std::max(kPauses.at(step_), gap_);
}

void IdleCollector::OnCollected(Instant now, size_t found) {
  last_ = now;
  step_ = found > 0 ? 1 : step_ + 1;
  gap_ = found > 0 ? kLeastGap : std::clamp(gap_ * 2, kLeastGap, kMostGap);
}

}  // namespace sorel
