// When which script timer is due. Decides only: it reads no clock and calls nobody. One thread at a time.
#ifndef SOREL_TIMERS_H
#define SOREL_TIMERS_H

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace sorel {

// Nanoseconds of the monotonic clock.
using Instant = uint64_t;
constexpr Instant kNever = UINT64_MAX;

class Timers {
 public:
  // A new timer, due `delay` after `now`, and again each `delay` when it repeats. Returns its id, never 0.
  uint32_t Add(Instant now, uint64_t delay, bool repeats);
  // False when there is none of that id (any more).
  bool Remove(uint32_t id);
  // The timer that has been due longest, in the order of arming when due at one instant; none when nothing is
  // due. One that does not repeat is gone with it; one that does is armed again, from `now` on: what was
  // missed while the script was busy is not made up for.
  std::optional<uint32_t> TakeDue(Instant now);
  bool Has(uint32_t id) const { return timers_.count(id) != 0; }
  Instant NextDue() const;
  bool Empty() const { return timers_.empty(); }

 private:
  struct Timer {
    std::pair<Instant, uint64_t> place;  // due, order of arming
    uint64_t delay;
    bool repeats;
  };

  void Arm(uint32_t id, Timer& timer, Instant due);

  std::map<uint32_t, Timer> timers_;
  std::map<std::pair<Instant, uint64_t>, uint32_t> queue_;
  uint64_t armed_ = 0;
  uint32_t lastId_ = 0;
};

}  // namespace sorel

#endif
