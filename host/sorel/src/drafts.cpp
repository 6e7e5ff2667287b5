#include "drafts.h"

#include <algorithm>
#include <array>
#include <atomic>

#include "draft_filler.h"
#include "property_names.h"
#include "runtime.h"
#include "scope.h"

namespace sorel {
namespace {

// All that is below is the thread's that has drafts. Scopes of this thread that took some:
constinit thread_local int t_taken = 0;
std::atomic<bool> g_taken = false;

bool BecomeTheOne() {
  if (t_taken == 0 && g_taken.exchange(true, std::memory_order_acquire)) return false;
  ++t_taken;
  return true;
}

void CeaseToBeTheOne() {
  if (--t_taken == 0) g_taken.store(false, std::memory_order_release);
}

// Handles that the table has set aside for drafts.
std::vector<Word>& SpareHandles() {
  static auto& handles = *new std::vector<Word>;
  return handles;
}

// By the place of a draft's handle in the table of handles: the draft's number in its batch. What it says of another
// handle is anything.
std::vector<uint32_t>& Numbers() {
  static auto& numbers = *new std::vector<uint32_t>;
  return numbers;
}

// Of calls that have ended, for the next: so that a list of records finds its memory.
std::vector<std::unique_ptr<Drafts>>& Recycled() {
  static auto& recycled = *new std::vector<std::unique_ptr<Drafts>>;
  return recycled;
}

// Keeps the memory of a usual list for the next.
void Clear(DraftBatch& batch) {
  constexpr size_t kKept = 8192;
  if (batch.properties.capacity() > kKept || batch.drafts.capacity() > kKept) batch = {};
  batch.drafts.clear();
  batch.properties.clear();
}

// The objects themselves, kept alive by the scope from the first moment, and known by their handles.
SOREL_VALUES_ON_STACK void MakeObjects(JSContextRef context, std::vector<Draft>& drafts, Scope& owner) {
  constexpr size_t kAtOnce = 256;
  std::array<JSValueRef, kAtOnce> objects;  // on the stack, where the collector sees them
  std::array<MadeObject, kAtOnce> made;
  for (size_t start = 0; start < drafts.size(); start += kAtOnce) {
    const size_t count = std::min(kAtOnce, drafts.size() - start);
    for (size_t i = 0; i < count; ++i) {
      Draft& draft = drafts[start + i];
      draft.object = draft.isArray ? JSObjectMakeArray(context, 0, nullptr, nullptr)
                                   : JSObjectMake(context, nullptr, nullptr);
      objects[i] = draft.object;
      made[i] = {draft.handle, draft.object};
    }
    owner.Protect(count == 1 ? objects[0] : JSObjectMakeArray(context, count, objects.data(), nullptr));
    Runtime::Get().Handles().Assign({made.data(), count});
  }
}

}  // namespace

const Draft* FindDraft(const DraftBatch& batch, Word handle) {
  if (!IsObjectHandle(handle)) return nullptr;
  const Word index = ObjectLayout::Parts(handle).index;
  if (index >= Numbers().size()) return nullptr;
  const uint32_t number = Numbers()[index];
  if (number >= batch.drafts.size() || batch.drafts[number].handle != handle) return nullptr;
  return &batch.drafts[number];
}

void Drafts::Recycle::operator()(Drafts* drafts) const {
  drafts->Drop();
  Recycled().emplace_back(drafts);
  CeaseToBeTheOne();
}

Drafts::Owner Drafts::Take() {
  if (!BecomeTheOne()) return nullptr;
  if (Recycled().empty()) return Owner(new Drafts);
  Owner drafts(Recycled().back().release());
  Recycled().pop_back();
  return drafts;
}

Word Drafts::Add(bool isArray) {
  std::vector<Word>& spare = SpareHandles();
  if (spare.empty()) Runtime::Get().Handles().SetAside(64, spare);
  if (spare.empty()) return 0;
  const Word handle = spare.back();
  spare.pop_back();
  const Word index = ObjectLayout::Parts(handle).index;
  if (index >= Numbers().size()) Numbers().resize(index + 1);
  Numbers()[index] = static_cast<uint32_t>(batch_.drafts.size());
  batch_.drafts.push_back({handle, isArray, kLastProperty, kLastProperty, nullptr});
  return handle;
}

bool Drafts::Has(Word handle) const {
  return FindDraft(batch_, handle) != nullptr;
}

Draft* Drafts::Find(Word handle, bool isArray) {
  auto* const draft = const_cast<Draft*>(FindDraft(batch_, handle));
  return draft != nullptr && draft->isArray == isArray ? draft : nullptr;
}

// An object of the engine is not one: its handle keeps nothing alive.
bool Drafts::Takes(Word value) const {
  if (IsScopedHandle(value)) return Scope::Find(value) != nullptr;
  return IsInt(value) || value == ZQ_VALUE_VOID || value == ZQ_VALUE_NULL || Has(value);
}

void Drafts::Append(Draft& draft, uint32_t key, Word value) {
  const auto number = static_cast<uint32_t>(batch_.properties.size());
  batch_.properties.push_back({key, kLastProperty, value});
  if (draft.first == kLastProperty) {
    draft.first = number;
  } else {
    batch_.properties[draft.last].next = number;
  }
  draft.last = number;
}

bool Drafts::SetProperty(Word object, const char* name, Word value) {
  Draft* const draft = Find(object, false);
  if (draft == nullptr || !Takes(value)) return false;
  const uint32_t key = PropertyNames::Get().NumberOf(name);
  if (key == PropertyNames::kNone) return false;
  Append(*draft, key, value);
  return true;
}

bool Drafts::SetElement(Word array, uint32_t index, Word value) {
  Draft* const draft = Find(array, true);
  if (draft == nullptr || !Takes(value)) return false;
  Append(*draft, index, value);
  return true;
}

void Drafts::Settle(JSContextRef context, Scope& owner) {
  if (batch_.drafts.empty()) return;
  // A setter of the script's may come back here: for it they are objects already.
  DraftBatch batch;
  std::swap(batch, batch_);
  const EngineLock lock;
  // A script that asks for lists again and again and never comes to an end would fill the table.
  if (Runtime::Get().TakeStaleHandles()) Runtime::Get().Handles().DropCollected();
  MakeObjects(context, batch.drafts, owner);
  FillDrafts(context, batch);
  Clear(batch);
  if (batch_.drafts.empty()) std::swap(batch, batch_);
}

void Drafts::Drop() {
  for (const Draft& draft : batch_.drafts) Runtime::Get().Handles().GiveBack(draft.handle);
  Clear(batch_);
}

}  // namespace sorel
