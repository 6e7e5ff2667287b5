#include "write_copies.h"

#include <mutex>
#include <optional>
#include <vector>

#include "copy_file.h"

namespace {

// Path and header of the copy that this process put on the disk last: it needs no second flush.
class LastSettled {
 public:
  bool Is(const CopyPlace& place, const Bytes& image) {
    const std::lock_guard lock(mutex_);
    return known_ == Mark(place, image);
  }
  void Set(const CopyPlace& place, const Bytes& image) {
    const std::lock_guard lock(mutex_);
    known_ = Mark(place, image);
  }

 private:
  static std::string Mark(const CopyPlace& place, const Bytes& image) {
    return place.path + '\0' + std::string(image.begin(), image.begin() + HeaderSize(true));
  }

  std::mutex mutex_;
  std::string known_;
};

LastSettled& TheLastSettled() {
  static LastSettled& last = *new LastSettled;
  return last;
}

struct Current {
  std::vector<CopyReading> copies;
  std::optional<size_t> newer;  // none when no copy is good
};

Current ReadCurrent(const StoreConfig& config) {
  const bool redundant = config.Redundant();
  Current current;
  current.copies.reserve(config.copies.size());
  for (const CopyPlace& place : config.copies) current.copies.push_back(ReadCopy(place, redundant));
  for (size_t i = 0; i < current.copies.size(); ++i) {
    if (current.copies[i].state != CopyState::Good) continue;
    if (!current.newer || NewerCopy(Counter(current.copies[*current.newer].image, redundant),
                                    Counter(current.copies[i].image, redundant)) == 1)
      current.newer = i;
  }
  return current;
}

std::string Settle(const StoreConfig& config, const Current& current) {
  if (!current.newer) return current.copies.front().why;
  const CopyPlace& place = config.copies[*current.newer];
  const Bytes& image = current.copies[*current.newer].image;
  if (TheLastSettled().Is(place, image)) return {};
  std::string why = OpenCopy(place).Sync();
  if (why.empty()) TheLastSettled().Set(place, image);
  return why;
}

}  // namespace

std::string WriteCopies(const StoreConfig& config, const Entries& entries) {
  const bool redundant = config.Redundant();
  const Current current = ReadCurrent(config);
  std::string why = Settle(config, current);
  if (!why.empty()) return why;
  const Bytes& newest = current.copies[*current.newer].image;
  const size_t target = redundant ? 1 - *current.newer : 0;
  const CopyPlace& place = config.copies[target];
  const std::optional<Bytes> image = BuildImage(entries, FlagsText(newest, redundant), place.size, redundant,
                                                static_cast<uint8_t>(Counter(newest, redundant) + 1));
  if (!image) return "the store is full";

  const OpenCopy file(place);
  why = file.Write(*image);
  if (why.empty()) {
    TheLastSettled().Set(place, *image);
    return {};
  }
  // Nor may bytes that the disk refused be found newer by the next reader. What was no copy before becomes
  // none.
  const Bytes& before = current.copies[target].image;
  const std::string undone = file.Write(before.empty() ? Bytes(place.size) : before);
  return undone.empty() ? why : why + "; not undone: " + undone;
}

std::string SettleCopies(const StoreConfig& config) {
  return Settle(config, ReadCurrent(config));
}
