// Objects and arrays that a native method is making.
//
// Each call into the engine takes its lock and costs more than what it does, and a list of records is thousands of
// them. So what a native method makes is only written down, and the engine makes all of it at once when somebody may look
// at it: when a draft's handle reaches any service but those that fill drafts, or is the method's answer. A draft that nobody asked for until its method returned is dropped: nothing can name it any more.
//
//   NewObject, NewArray -> draft -> SetProperty, SetElement with plain values and other drafts -> draft
//                          draft -> anything else -> all drafts of the method are objects of the engine
#ifndef SOREL_DRAFTS_H
#define SOREL_DRAFTS_H

#include <cstdint>
#include <memory>
#include <vector>

#include "jsc.h"
#include "words.h"

namespace sorel {

class Scope;

struct DraftProperty {
  uint32_t key;   // the number of its name; an array's index
  uint32_t next;  // of the same draft's, by number; kLastProperty
  Word value;     // an immediate one, a handle of a scope, or of a draft of the same call
};
constexpr uint32_t kLastProperty = UINT32_MAX;

struct Draft {
  Word handle;
  bool isArray;
  uint32_t first;  // property, in the order of setting; kLastProperty
  uint32_t last;
  JSObjectRef object;  // once it is made
};

struct DraftBatch {
  std::vector<Draft> drafts;
  std::vector<DraftProperty> properties;
};

// Null for a handle that is no draft's of the batch.
const Draft* FindDraft(const DraftBatch& batch, Word handle);

// Of one native method's call, or one request of a module's thread. One thread at a time has drafts: until the outermost
// of its scopes that took some has ended, what others make are objects at once.
class Drafts {
 public:
  struct Recycle {
    void operator()(Drafts* drafts) const;
  };
  using Owner = std::unique_ptr<Drafts, Recycle>;

  // Without drafts; those there are when it is recycled are dropped. Null while another thread has some.
  static Owner Take();

  // The handle of a new draft; 0 when handles run out.
  Word Add(bool isArray);
  bool Has(Word handle) const;
  // False when that cannot be written down: the target is no draft of the kind, or the value not what a draft takes.
  bool SetProperty(Word object, const char* name, Word value);
  bool SetElement(Word array, uint32_t index, Word value);

  // Makes the engine's objects of all drafts; `owner`, the call's, keeps them alive.
  void Settle(JSContextRef context, Scope& owner);

 private:
  // Null also for one of the other kind.
  Draft* Find(Word handle, bool isArray);
  bool Takes(Word value) const;
  void Append(Draft& draft, uint32_t key, Word value);
  void Drop();

  DraftBatch batch_;
};

}  // namespace sorel

#endif
