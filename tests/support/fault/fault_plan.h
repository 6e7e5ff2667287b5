// The plan in force: which call of which kind has which effect, and how many were made.
#ifndef ZQ_FAULT_PLAN_H
#define ZQ_FAULT_PLAN_H

#include <atomic>
#include <climits>
#include <cstddef>
#include <optional>
#include <string_view>

enum class FaultCall {
  kOpen,
  kClose,
  kRead,
  kWrite,
  kFsync,
  kFdatasync,
  kFtruncate,
  kRename,
  kLink,
  kUnlink,
  kFlock,
  kFchmod,
  kFchown,
  kCount
};

enum class FaultEffect { kNone, kError, kShort, kStall, kHold, kKill, kThenKill };

struct FaultRule {
  FaultCall call;
  long which;  // from 1; 0 is all
  FaultEffect effect;
  int number;  // errno or milliseconds
};

// Takes no lock and allocates nothing once begun, so that any thread and any forked child may ask.
class FaultPlan {
 public:
  // Keeps the one before it within reach.
  explicit FaultPlan(FaultPlan* before) : before_(before) {}
  // Once.
  bool Begin(const char* folder, std::string_view plan);
  void End();

  bool InForce() const { return inForce_.load(std::memory_order_acquire); }
  // Whether an absolute path is the folder or lies below it.
  bool Covers(std::string_view path) const;
  // Counts one call and says what happens to it.
  FaultRule Next(FaultCall call);
  long Calls(FaultCall call) const { return calls_[static_cast<size_t>(call)]; }

  static std::optional<FaultCall> CallNamed(std::string_view name);

 private:
  static constexpr size_t kMaxRules = 16;

  bool Add(std::string_view rule);

  FaultPlan* const before_;
  std::atomic<bool> inForce_{false};
  char named_[PATH_MAX] = {};
  char real_[PATH_MAX] = {};  // the same without links, as descriptors know it
  FaultRule rules_[kMaxRules] = {};
  size_t ruleCount_ = 0;
  std::atomic<long> calls_[static_cast<size_t>(FaultCall::kCount)] = {};
};

#endif
