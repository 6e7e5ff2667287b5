#include "timers.h"

#include <algorithm>

namespace sorel {

uint32_t Timers::Add(Instant now, uint64_t delay, bool repeats) {
  do {
    ++lastId_;
  } while (lastId_ == 0 || Has(lastId_));
  Timer& timer = timers_[lastId_];
  timer.delay = delay;
  timer.repeats = repeats;
  Arm(lastId_, timer, now + delay);
  return lastId_;
}

bool Timers::Remove(uint32_t id) {
  const auto found = timers_.find(id);
  if (found == timers_.end()) return false;
  queue_.erase(found->second.place);
  timers_.erase(found);
  return true;
}

std::optional<uint32_t> Timers::TakeDue(Instant now) {
  if (NextDue() > now) return std::nullopt;
  const uint32_t id = queue_.begin()->second;
  queue_.erase(queue_.begin());
  Timer& timer = timers_[id];
  if (timer.repeats) {
    Arm(id, timer, std::max(timer.place.first + timer.delay, now + 1));
  } else {
    timers_.erase(id);
  }
  return id;
}

Instant Timers::NextDue() const {
  return queue_.empty() ? kNever : queue_.begin()->first.first;
}

void Timers::Arm(uint32_t id, Timer& timer, Instant due) {
  timer.place = {due, ++armed_};
  queue_[timer.place] = id;
}

}  // namespace sorel
