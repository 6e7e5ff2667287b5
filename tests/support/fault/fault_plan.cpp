#include "fault_plan.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::string_view kCallNames[] = {"open",      "close",     "read",   "write", "fsync",
                                           "fdatasync", "ftruncate", "rename", "link",  "unlink",
                                           "flock",     "fchmod",    "fchown"};
static_assert(std::size(kCallNames) == static_cast<size_t>(FaultCall::kCount));

struct ErrorName {
  std::string_view name;
  int number;
};
constexpr ErrorName kErrors[] = {
    {"ENOSPC", ENOSPC}, {"EIO", EIO},       {"EDQUOT", EDQUOT}, {"EROFS", EROFS},
    {"EACCES", EACCES}, {"EPERM", EPERM},   {"ENOENT", ENOENT}, {"EINTR", EINTR},
    {"EAGAIN", EAGAIN}, {"EMFILE", EMFILE}, {"EFBIG", EFBIG},   {"EBUSY", EBUSY},
    {"ENOMEM", ENOMEM}, {"EINVAL", EINVAL}, {"ENOLCK", ENOLCK}, {"EXDEV", EXDEV}};

// The text before the separator, which is taken off with it.
std::string_view Take(std::string_view& text, char separator) {
  const size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

template <typename Number>
bool ReadNumber(std::string_view text, Number* number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return error == std::errc() && end == text.data() + text.size() && *number > 0;
}

}  // namespace

std::optional<FaultCall> FaultPlan::CallNamed(std::string_view name) {
  const auto* found = std::ranges::find(kCallNames, name);
  if (found == std::end(kCallNames)) return std::nullopt;
  return static_cast<FaultCall>(found - std::begin(kCallNames));
}

bool FaultPlan::Begin(const char* folder, std::string_view plan) {
  std::string_view name = folder;
  while (name.size() > 1 && name.ends_with('/')) name.remove_suffix(1);
  if (name.empty() || name.size() >= sizeof named_ || realpath(folder, real_) == nullptr) return false;
  memcpy(named_, name.data(), name.size());
  named_[name.size()] = '\0';
  while (!plan.empty()) {
    if (!Add(Take(plan, ','))) return false;
  }
  inForce_.store(true, std::memory_order_release);
  return true;
}

void FaultPlan::End() {
  inForce_.store(false, std::memory_order_release);
}

bool FaultPlan::Add(std::string_view text) {
  const std::optional<FaultCall> call = CallNamed(Take(text, ':'));
  if (!call || ruleCount_ == kMaxRules) return false;
  FaultRule rule{*call, 0, FaultEffect::kError, 0};
  const std::string_view which = Take(text, ':');
  if (which != "all" && !ReadNumber(which, &rule.which)) return false;
  const std::string_view effect = Take(text, ':');
  if (effect == "short") {
    rule.effect = FaultEffect::kShort;
  } else if (effect == "hold") {
    rule.effect = FaultEffect::kHold;
  } else if (effect == "kill") {
    rule.effect = FaultEffect::kKill;
  } else if (effect == "then-kill") {
    rule.effect = FaultEffect::kThenKill;
  } else if (effect == "stall") {
    rule.effect = FaultEffect::kStall;
    if (!ReadNumber(Take(text, ':'), &rule.number)) return false;
  } else {
    const auto* error = std::ranges::find(kErrors, effect, &ErrorName::name);
    if (error == std::end(kErrors)) return false;
    rule.number = error->number;
  }
  rules_[ruleCount_++] = rule;
  return text.empty();
}

bool FaultPlan::Covers(std::string_view path) const {
  const auto below = [path](std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
  };
  return below(named_) || below(real_);
}

FaultRule FaultPlan::Next(FaultCall call) {
  const long number = ++calls_[static_cast<size_t>(call)];
  for (size_t i = 0; i < ruleCount_; ++i) {
    const FaultRule& rule = rules_[i];
    if (rule.call == call && (rule.which == 0 || rule.which == number)) return rule;
  }
  return {call, 0, FaultEffect::kNone, 0};
}
