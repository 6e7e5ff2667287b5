// Objects that modules hold by handle.
//
// A handle keeps nothing alive: it is good as long as the script can reach the object, and refused from the
// moment that it was collected. One object has one handle for all its life. Module objects (made by a class
// constructor) carry the module's private pointer and finalizer besides; their entry stays until the
// finalizer ran.
//
//   free -> plain     -> free, when found collected
//   free -> set aside -> plain, when a draft's object is made
//                     -> free, when the draft is dropped
//   free -> instance  -> dead, when found collected or the host ends -> free, by Release
#ifndef SOREL_HANDLES_H
#define SOREL_HANDLES_H

#include <atomic>
#include <deque>
#include <mutex>
#include <span>
#include <unordered_map>
#include <vector>

#include "jsc.h"
#include "words.h"

namespace sorel {

// What a module attached to one of its objects.
struct Attachment {
  std::atomic<bool> set{false};
  std::atomic<void*> pointer{nullptr};
};

// An object, and the handle that was set aside for it.
struct MadeObject {
  Word handle;
  JSObjectRef object;
};

// A finalizer that is due.
struct Finalization {
  Word handle;
  zq_Finalizer finalizer;  // null: the module registered none
};

// Any thread; those marked so need the engine's lock held by the caller, as the engine's own data is read.
class HandleTable {
 public:
  struct Self {
    Word handle;             // 0: not a module object
    Attachment* attachment;  // null with it
  };

  explicit HandleTable(JSContextGroupRef group) : group_(group) {}
  HandleTable(const HandleTable&) = delete;
  HandleTable& operator=(const HandleTable&) = delete;
  ~HandleTable() = default;  // the process ends with it; the engine is not asked any more

  // The object's handle, a new one when it has none; 0 when the table is full. Engine lock.
  Word Of(JSObjectRef object);
  // As Of, for an object that a class constructor is about to make a module object. Engine lock.
  Word AddInstance(JSObjectRef object);
  // Adds to `handles` as many as are wanted, or as are left, for objects that are not made yet.
  void SetAside(size_t count, std::vector<Word>& handles);
  // Gives handles that were set aside to objects that have none. Engine lock.
  void Assign(std::span<const MadeObject> made);
  // Of a handle that was set aside: it is out of date from now on.
  void GiveBack(Word handle);
  // Null for a handle that is out of date. Engine lock.
  JSObjectRef Object(Word handle) const;
  // For the `this` of a call, which its caller keeps alive: no lock. The last answer to each thread is
  // remembered.
  Self FindInstance(JSObjectRef object) const;

  // False for handles that are no module object's.
  bool SetPrivate(Word handle, void* pointer);
  bool GetPrivate(Word handle, void** pointer) const;
  bool SetFinalizer(Word handle, zq_Finalizer finalizer);

  // Frees the entries of collected objects; those of module objects are returned, in the order of
  // construction, to be finalized and released. Script thread, engine lock.
  std::vector<Finalization> TakeCollected();
  // Frees those that are no module objects'. Engine lock.
  void DropCollected();
  // All module objects that are left, as if collected. Script thread, engine lock.
  std::vector<Finalization> TakeAll();
  // Script thread.
  void Release(Word handle);
  // Module objects whose finalizer did not run yet.
  size_t Instances() const { return instances_.load(std::memory_order_relaxed); }

 private:
  enum class Kind : uint8_t { kFree, kSetAside, kPlain, kInstance, kDead };
  struct Slot {
    Word generation = 1;
    Kind kind = Kind::kFree;
    JSObjectRef address = nullptr;  // the key in byObject_; may dangle once collected, never followed
    JSWeakRef weak = nullptr;
    uint64_t order = 0;  // of construction
    zq_Finalizer finalizer = nullptr;
    Attachment attachment;
  };

  Slot* NewSlot(Word* index);
  void Attach(Slot& slot, Word index, JSObjectRef object);
  Word Add(JSObjectRef object, Kind kind);
  void MergeUnsorted() const;
  Word FindAlive(JSObjectRef object) const;
  const Slot* Find(Word handle) const;
  Slot* Find(Word handle) { return const_cast<Slot*>(static_cast<const HandleTable*>(this)->Find(handle)); }
  void Detach(Slot& slot, Word index);
  void Free(Slot& slot, Word index);
  std::vector<Finalization> Take(bool all);

  const JSContextGroupRef group_;
  mutable std::mutex mutex_;
  std::deque<Slot> slots_;  // addresses stay
  std::vector<Word> free_;
  mutable std::unordered_map<JSObjectRef, Word> byObject_;  // to the index
  // Indexes of entries on their way into byObject_, in the order of making: of a list's records hardly one is ever
  // asked for.
  mutable std::vector<Word> unsorted_;
  uint64_t nextOrder_ = 0;
  std::atomic<size_t> instances_{0};
};

}  // namespace sorel

#endif
