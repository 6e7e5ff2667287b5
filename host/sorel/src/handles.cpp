#include "handles.h"

#include <algorithm>

#include "script_thread.h"

namespace sorel {
namespace {

// The script thread's last `this`. Entries are freed by the script thread alone, so nobody frees it under its
// eyes.
struct LastSelf {
  JSObjectRef object = nullptr;
  JSWeakRef weak = nullptr;
  HandleTable::Self self{};
};
LastSelf g_last;

}  // namespace

Word HandleTable::Of(JSObjectRef object) {
  const std::lock_guard lock(mutex_);
  const Word known = FindAlive(object);
  return known != 0 ? known : Add(object, Kind::kPlain);
}

Word HandleTable::AddInstance(JSObjectRef object) {
  const std::lock_guard lock(mutex_);
  const Word known = FindAlive(object);
  if (known == 0) return Add(object, Kind::kInstance);
  Slot& slot = *Find(known);
  if (slot.kind == Kind::kPlain) {
    slot.kind = Kind::kInstance;
    instances_.fetch_add(1, std::memory_order_relaxed);
  }
  return known;
}

// Null when the table is full.
HandleTable::Slot* HandleTable::NewSlot(Word* index) {
  if (!free_.empty()) {
    *index = free_.back();
    free_.pop_back();
    return &slots_[*index];
  }
  *index = slots_.size();
  return *index <= ObjectLayout::kMaxIndex ? &slots_.emplace_back() : nullptr;
}

void HandleTable::Attach(Slot& slot, Word index, JSObjectRef object) {
  slot.address = object;
  slot.weak = JSWeakCreate(group_, object);
  slot.order = nextOrder_++;
  unsorted_.push_back(index);
}

void HandleTable::MergeUnsorted() const {
  for (const Word index : unsorted_) {
    const Slot& slot = slots_[index];
    if (slot.address != nullptr) byObject_[slot.address] = index;
  }
  unsorted_.clear();
}

Word HandleTable::Add(JSObjectRef object, Kind kind) {
  Word index = 0;
  Slot* const slot = NewSlot(&index);
  if (slot == nullptr) return 0;
  slot->kind = kind;
  Attach(*slot, index, object);
  if (kind == Kind::kInstance) instances_.fetch_add(1, std::memory_order_relaxed);
  return ObjectLayout::Make({slot->generation, index}, kObjectTag);
}

void HandleTable::SetAside(size_t count, std::vector<Word>& handles) {
  const std::lock_guard lock(mutex_);
  for (; count > 0; --count) {
    Word index = 0;
    Slot* const slot = NewSlot(&index);
    if (slot == nullptr) return;
    slot->kind = Kind::kSetAside;
    handles.push_back(ObjectLayout::Make({slot->generation, index}, kObjectTag));
  }
}

void HandleTable::Assign(std::span<const MadeObject> made) {
  const std::lock_guard lock(mutex_);
  for (const auto& [handle, object] : made) {
    Slot* const slot = Find(handle);
    if (slot == nullptr || slot->kind != Kind::kSetAside) continue;
    slot->kind = Kind::kPlain;
    Attach(*slot, ObjectLayout::Parts(handle).index, object);
  }
}

void HandleTable::GiveBack(Word handle) {
  const std::lock_guard lock(mutex_);
  Slot* const slot = Find(handle);
  if (slot != nullptr && slot->kind == Kind::kSetAside) Free(*slot, ObjectLayout::Parts(handle).index);
}

// An address may belong to a new object while the entry of the one that lay there before is still in the
// table.
Word HandleTable::FindAlive(JSObjectRef object) const {
  MergeUnsorted();
  const auto found = byObject_.find(object);
  if (found == byObject_.end()) return 0;
  const Slot& slot = slots_[found->second];
  if (slot.weak == nullptr || JSWeakGetObject(slot.weak) != object) return 0;
  return ObjectLayout::Make({slot.generation, found->second}, kObjectTag);
}

const HandleTable::Slot* HandleTable::Find(Word handle) const {
  if (!IsObjectHandle(handle)) return nullptr;
  const HandleParts parts = ObjectLayout::Parts(handle);
  if (parts.index >= slots_.size()) return nullptr;
  const Slot& slot = slots_[parts.index];
  return slot.kind != Kind::kFree && slot.generation == parts.number ? &slot : nullptr;
}

JSObjectRef HandleTable::Object(Word handle) const {
  const std::lock_guard lock(mutex_);
  const Slot* slot = Find(handle);
  return slot != nullptr && slot->weak != nullptr ? JSWeakGetObject(slot->weak) : nullptr;
}

HandleTable::Self HandleTable::FindInstance(JSObjectRef object) const {
  const bool remembers = OnScriptThread();
  if (remembers && g_last.object == object && JSWeakGetObject(g_last.weak) == object) return g_last.self;
  const std::lock_guard lock(mutex_);
  const Word handle = FindAlive(object);
  // The attachment is the one part of an entry that is written through a constant table: by its atomics.
  auto* slot = const_cast<Slot*>(Find(handle));
  if (slot == nullptr || slot->kind != Kind::kInstance) return {0, nullptr};
  const Self self{handle, &slot->attachment};
  if (remembers) g_last = {object, slot->weak, self};
  return self;
}

bool HandleTable::SetPrivate(Word handle, void* pointer) {
  const std::lock_guard lock(mutex_);
  Slot* slot = Find(handle);
  if (slot == nullptr || (slot->kind != Kind::kInstance && slot->kind != Kind::kDead)) return false;
  slot->attachment.pointer.store(pointer);
  slot->attachment.set.store(true);
  return true;
}

bool HandleTable::GetPrivate(Word handle, void** pointer) const {
  const std::lock_guard lock(mutex_);
  const Slot* slot = Find(handle);
  if (slot == nullptr || !slot->attachment.set.load()) return false;
  *pointer = slot->attachment.pointer.load();
  return true;
}

bool HandleTable::SetFinalizer(Word handle, zq_Finalizer finalizer) {
  const std::lock_guard lock(mutex_);
  Slot* slot = Find(handle);
  if (slot == nullptr || slot->kind != Kind::kInstance) return false;
  slot->finalizer = finalizer;
  return true;
}

std::vector<Finalization> HandleTable::TakeCollected() {
  return Take(false);
}
void HandleTable::DropCollected() {
  const std::lock_guard lock(mutex_);
  for (Word index = 0; index < slots_.size(); ++index) {
    Slot& slot = slots_[index];
    if (slot.kind == Kind::kPlain && JSWeakGetObject(slot.weak) == nullptr) Free(slot, index);
  }
  MergeUnsorted();
}

std::vector<Finalization> HandleTable::TakeAll() {
  return Take(true);
}

std::vector<Finalization> HandleTable::Take(bool all) {
  const std::lock_guard lock(mutex_);
  g_last = {};
  std::vector<std::pair<uint64_t, Finalization>> taken;
  for (Word index = 0; index < slots_.size(); ++index) {
    Slot& slot = slots_[index];
    const bool instance = slot.kind == Kind::kInstance;
    if (!instance && slot.kind != Kind::kPlain) continue;
    if (all ? !instance : JSWeakGetObject(slot.weak) != nullptr) continue;
    if (!instance) {
      Free(slot, index);
      continue;
    }
    taken.push_back({slot.order, {ObjectLayout::Make({slot.generation, index}, kObjectTag), slot.finalizer}});
    slot.kind = Kind::kDead;
    Detach(slot, index);
  }
  MergeUnsorted();
  std::sort(taken.begin(), taken.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<Finalization> due;
  due.reserve(taken.size());
  for (const auto& [order, finalization] : taken) due.push_back(finalization);
  return due;
}

void HandleTable::Release(Word handle) {
  const std::lock_guard lock(mutex_);
  Slot* slot = Find(handle);
  if (slot == nullptr || slot->kind != Kind::kDead) return;
  instances_.fetch_sub(1, std::memory_order_relaxed);
  Free(*slot, ObjectLayout::Parts(handle).index);
}

void HandleTable::Detach(Slot& slot, Word index) {
  if (slot.weak != nullptr) JSWeakRelease(group_, slot.weak);
  slot.weak = nullptr;
  const auto entry = byObject_.find(slot.address);
  if (entry != byObject_.end() && entry->second == index) byObject_.erase(entry);
  slot.address = nullptr;
}

void HandleTable::Free(Slot& slot, Word index) {
  Detach(slot, index);
  slot.kind = Kind::kFree;
  slot.finalizer = nullptr;
  slot.attachment.set.store(false);
  slot.attachment.pointer.store(nullptr);
  slot.generation = slot.generation == ObjectLayout::kMaxNumber ? 1 : slot.generation + 1;
  free_.push_back(index);
}

}  // namespace sorel
