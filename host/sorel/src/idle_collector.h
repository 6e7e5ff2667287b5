// When an idle host collects garbage: dropped module objects end the program, or at least their device work,
// only when they are found. Decides only.
//
//   something ran:  0 ms, then after 100 ms, 1 s, 10 s of idleness (a stack may have hidden an object), then
//   rest found one:      begins anew
// A script that is busy and drops nothing sees them at most every 50 ms, then every 100, 200, up to 10 s.
#ifndef SOREL_IDLE_COLLECTOR_H
#define SOREL_IDLE_COLLECTOR_H

#include <array>
#include <cstddef>

#include "timers.h"

namespace sorel {

class IdleCollector {
 public:
  // Scripts ran: objects may have been dropped.
  void OnActivity() { step_ = 0; }
  // When the next collection is due; kNever when there is nothing to be found.
  Instant NextDue(Instant now, size_t objects) const;
  // A collection took place, and this many objects were found.
  void OnCollected(Instant now, size_t found);

 private:
  static constexpr uint64_t kMs = 1'000'000;
  static constexpr std::array<uint64_t, 4> kPauses = {0, 100 * kMs, 1000 * kMs, 10000 * kMs};
  // Between two collections, whatever runs; doubles from the first to the second.
  static constexpr uint64_t kLeastGap = 50 * kMs;
  static constexpr uint64_t kMostGap = 10000 * kMs;

  size_t step_ = 0;
  Instant last_ = 0;
  uint64_t gap_ = 0;  // least time since last_
};

}  // namespace sorel

#endif
