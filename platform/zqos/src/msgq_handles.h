// Numbers that stand for shared objects, given out once, so that a stale number finds nothing.
#ifndef ZQ_MSGQ_HANDLES_H
#define ZQ_MSGQ_HANDLES_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

// Any thread. A found object stays alive as long as its finder holds it, whoever removes it meanwhile.
template <class Object>
class HandleTable {
 public:
  // Never 0. Numbers come round again after four billion, past those still in use.
  uint32_t Add(std::shared_ptr<Object> object) {
    const std::unique_lock lock(mutex_);
    do {
      ++last_;
    } while (last_ == 0 || objects_.count(last_) != 0);
    objects_.emplace(last_, std::move(object));
    return last_;
  }

  // Null for a number that stands for nothing (any more).
  std::shared_ptr<Object> Find(uint32_t handle) const {
    const std::shared_lock lock(mutex_);
    const auto found = objects_.find(handle);
    return found == objects_.end() ? nullptr : found->second;
  }

  // What the number stood for; the first caller gets it, later ones null.
  std::shared_ptr<Object> Remove(uint32_t handle) {
    const std::unique_lock lock(mutex_);
    const auto found = objects_.find(handle);
    if (found == objects_.end()) return nullptr;
    std::shared_ptr<Object> object = std::move(found->second);
    objects_.erase(found);
    return object;
  }

 private:
  mutable std::shared_mutex mutex_;
  std::unordered_map<uint32_t, std::shared_ptr<Object>> objects_;
  uint32_t last_ = 0;
};

#endif
