#include "msgq_agenda.h"

#include "zq_memory.h"

namespace {

constexpr uint64_t kNsPerMs = 1000000;

void Free(MSG_COMMON* message) {
  zq__free(message, __FILE__, __LINE__);
}

}  // namespace

MsgqAgenda::~MsgqAgenda() {
  Clear();
}

void MsgqAgenda::Post(MSG_COMMON* message, bool inFront, uint64_t now, uint32_t socket) {
  std::deque<Entry>& posts = holding_ ? held_ : posts_;
  if (inFront) {
    posts.push_front({message, {0, 0}, socket});
  } else {
    posts.push_back({message, {now, ++sequence_}, socket});
  }
}

void MsgqAgenda::ForgetSocket(uint32_t socket) {
  std::erase_if(posts_, [socket](const Entry& entry) {
    if (entry.socket != socket) return false;
    Free(entry.message);
    return true;
  });
}

void MsgqAgenda::Clear() {
  for (std::deque<Entry>* posts : {&posts_, &held_}) {
    for (const Entry& entry : *posts) Free(entry.message);
    posts->clear();
  }
}

void MsgqAgenda::Arm(uint32_t id, uint64_t now, uint32_t milliseconds, uintptr_t param, const char* name,
                     bool repeat) {
  const uint64_t period = milliseconds * kNsPerMs;
  Timer timer{now + period, ++sequence_, period, param, repeat, name == nullptr ? "" : name};
  Disarm(id);
  const auto place = timers_.insert_or_assign(id, std::move(timer)).first;
  try {
    Enlist(place->second, id);
  } catch (...) {
    timers_.erase(place);
    throw;
  }
}

bool MsgqAgenda::Disarm(uint32_t id) {
  const auto found = timers_.find(id);
  if (found == timers_.end()) return false;
  Unlist(found->second, id);
  timers_.erase(found);
  return true;
}

void MsgqAgenda::DisarmAll() {
  order_.clear();
  timers_.clear();
}

const MsgqAgenda::Timer* MsgqAgenda::FindTimer(uint32_t id) const {
  const auto found = timers_.find(id);
  return found == timers_.end() ? nullptr : &found->second;
}

size_t MsgqAgenda::Pending(uint64_t now) const {
  size_t due = 0;
  for (auto at = order_.begin(); at != order_.end() && at->first.first <= now; ++at) ++due;
  return posts_.size() + held_.size() + due;
}

void MsgqAgenda::Hold() {
  holding_ = true;
  DisarmAll();
}

MSG_COMMON* MsgqAgenda::TakePost() {
  MSG_COMMON* message = posts_.front().message;
  posts_.pop_front();
  return message;
}

std::pair<uint32_t, uintptr_t> MsgqAgenda::TakeTimer(uint64_t now) {
  auto node = order_.extract(order_.begin());
  const uint32_t id = node.value().second;
  const auto place = timers_.find(id);
  Timer& timer = place->second;
  const std::pair<uint32_t, uintptr_t> expiry(id, timer.param);
  if (!timer.repeat) {
    timers_.erase(place);
    return expiry;
  }
  const uint64_t late = now - timer.deadline;
  const uint64_t periods = timer.periodNs == 0 ? 0 : (late + timer.periodNs - 1) / timer.periodNs;
  timer.deadline = timer.periodNs == 0 ? now : timer.deadline + (periods == 0 ? 1 : periods) * timer.periodNs;
  timer.sequence = ++sequence_;
  node.value() = {{timer.deadline, timer.sequence}, id};
  order_.insert(std::move(node));
  return expiry;
}

const MsgqAgenda::Timer& MsgqAgenda::PostponeTimer(uint64_t deadline) {
  auto node = order_.extract(order_.begin());
  Timer& timer = timers_.find(node.value().second)->second;
  timer.deadline = deadline;
  node.value().first.first = deadline;
  order_.insert(std::move(node));
  return timer;
}

void MsgqAgenda::Unlist(const Timer& timer, uint32_t id) {
  order_.erase({{timer.deadline, timer.sequence}, id});
}

void MsgqAgenda::Enlist(const Timer& timer, uint32_t id) {
  order_.insert({{timer.deadline, timer.sequence}, id});
}
