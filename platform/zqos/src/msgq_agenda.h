// What a queue has to do, and in which order: posted messages and armed timers by their instants. Plain
// values: no clock, no lock, no descriptor. An instant is nanoseconds of the monotonic clock; what has the
// same instant goes in the order in which it was asked for.
#ifndef ZQ_MSGQ_AGENDA_H
#define ZQ_MSGQ_AGENDA_H

#include <cstdint>
#include <deque>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

#include "zq_msgq.h"

// One at a time. Owns the messages that wait; the destructor frees them.
class MsgqAgenda {
 public:
  static constexpr uint64_t kNever = UINT64_MAX;

  struct Timer {
    uint64_t deadline;  // the instant at which it expires
    uint64_t sequence;
    uint64_t periodNs;
    uintptr_t param;
    bool repeat;
    std::string name;
  };

  MsgqAgenda() = default;
  MsgqAgenda(const MsgqAgenda&) = delete;
  MsgqAgenda& operator=(const MsgqAgenda&) = delete;
  ~MsgqAgenda();

  // `now` matters only while a timer is armed: a timer armed later expires after the post anyway, so the
  // caller may leave the clock unread (0) when TimersArmed() is false. `socket`: whose notice it is, 0 for
  // none.
  void Post(MSG_COMMON* message, bool inFront, uint64_t now, uint32_t socket);
  // Frees the notices of one socket that wait.
  void ForgetSocket(uint32_t socket);
  // Frees every message that waits.
  void Clear();

  // Replaces a timer of the same id.
  void Arm(uint32_t id, uint64_t now, uint32_t milliseconds, uintptr_t param, const char* name, bool repeat);
  // False when it was not armed.
  bool Disarm(uint32_t id);
  void DisarmAll();
  bool TimersArmed() const { return !order_.empty(); }
  // The instant of the first expiry; kNever without a timer.
  uint64_t NextDeadline() const { return order_.empty() ? kNever : order_.begin()->first.first; }
  // Null when it is not armed.
  const Timer* FindTimer(uint32_t id) const;

  // Messages that wait, held ones too, and timers that are due.
  size_t Pending(uint64_t now) const;
  // From now on posts are held: they wait until Clear. What waited before is still given out; timers are
  // disarmed.
  void Hold();
  // Nothing that waits will be given out without another post or Arm.
  bool PostsEmpty() const { return posts_.empty(); }

  enum class Next { kNothing, kPost, kTimer };
  // What comes first. `now` is a callable, asked only when the clock decides: with a post that waits, a timer
  // ahead of it is due already.
  template <class Now>
  Next Decide(const Now& now) const {
    if (order_.empty()) return posts_.empty() ? Next::kNothing : Next::kPost;
    const Moment& timer = order_.begin()->first;
    if (!posts_.empty()) return posts_.front().moment < timer ? Next::kPost : Next::kTimer;
    return timer.first <= now() ? Next::kTimer : Next::kNothing;
  }
  // After kPost: the message, the caller's from now on.
  MSG_COMMON* TakePost();
  // After kTimer: its id and parameter. A repeated one is armed again, in step with its period; expiries that
  // were missed altogether are not made up for.
  std::pair<uint32_t, uintptr_t> TakeTimer(uint64_t now);
  // After kTimer, when its message cannot be made: the timer, tried again at `deadline`.
  const Timer& PostponeTimer(uint64_t deadline);

 private:
  using Moment = std::pair<uint64_t, uint64_t>;  // instant, sequence
  struct Entry {
    MSG_COMMON* message;
    Moment moment;
    uint32_t socket;
  };

  void Unlist(const Timer& timer, uint32_t id);
  void Enlist(const Timer& timer, uint32_t id);

  std::deque<Entry> posts_;
  std::deque<Entry> held_;
  std::unordered_map<uint32_t, Timer> timers_;
  std::set<std::pair<Moment, uint32_t>> order_;  // of the timers
  uint64_t sequence_ = 0;
  bool holding_ = false;
};

#endif
