#include "turn_lock.h"

#include <condition_variable>

namespace sorel {

struct TurnLock::Waiter {
  const uint32_t pauses;
  bool served = false;
  Waiter* next = nullptr;
  std::condition_variable changed{};
};

bool TurnLock::Await(uint32_t pauses) {
  std::unique_lock lock(mutex_);
  if (pauses == kAnyPauses && !OnScriptThread()) others_.fetch_add(1);
  Waiter self{pauses};
  Waiter** end = &first_;
  while (*end != nullptr) end = &(*end)->next;
  *end = &self;
  HandOver();
  self.changed.wait(lock, [&] { return self.served || (refuses_ && pauses == kAnyPauses); });
  if (!self.served) {
    Remove(&self);
    if (!OnScriptThread()) others_.fetch_sub(1);
  } else if (pauses != kAnyPauses) {
    if (OnScriptThread()) {
      own_.fetch_sub(kPause);
    } else {
      --pausesOfOthers_;
    }
  }
  return self.served;
}

void TurnLock::LeaveAmongOthers() {
  const std::lock_guard lock(mutex_);
  held_ = false;
  HandOver();
  if (!OnScriptThread()) others_.fetch_sub(1);
}

uint32_t TurnLock::PauseAmongOthers() {
  const std::lock_guard lock(mutex_);
  if (OnScriptThread()) {
    own_.fetch_add(kPause);
  } else {
    ++pausesOfOthers_;
  }
  const uint32_t pauses = Pauses();
  held_ = false;
  HandOver();
  return pauses;
}

void TurnLock::Serve() {
  const std::lock_guard lock(mutex_);
  HandOver();
}

void TurnLock::HandOver() {
  // The script thread may try to have it at this moment; it finds that it cannot, and comes here itself.
  if (held_ || (own_.load() & kHeld) != 0) return;
  for (Waiter* waiter = first_; waiter != nullptr; waiter = waiter->next) {
    if (waiter->pauses != kAnyPauses && waiter->pauses != Pauses()) continue;
    held_ = true;
    Remove(waiter);
    waiter->served = true;
    // With the mutex: the waiter is gone as soon as it can have that.
    waiter->changed.notify_one();
    return;
  }
}

void TurnLock::Remove(const Waiter* waiter) {
  Waiter** place = &first_;
  while (*place != waiter) place = &(*place)->next;
  *place = waiter->next;
}

void TurnLock::RefuseEntries() {
  const std::lock_guard lock(mutex_);
  refuses_ = true;
  for (Waiter* waiter = first_; waiter != nullptr; waiter = waiter->next) waiter->changed.notify_one();
}

}  // namespace sorel
