// The values that a module has in hand for a while: the arguments of a native method, the strings and objects
// that it makes, the texts it asked for. They are good until the native method returns; on other threads
// until EndRequest; on a thread outside any request the latest few hundred are.
//
// Scopes of a thread are nested; each thread sees its own alone.
#ifndef SOREL_SCOPE_H
#define SOREL_SCOPE_H

#include <array>
#include <vector>

#include "drafts.h"
#include "handles.h"
#include "jsc.h"
#include "script_thread.h"
#include "text_arena.h"
#include "words.h"

namespace sorel {

class Scope {
 public:
  // What a handle stands for: the value, or the string of the text when there is none.
  struct Entry {
    JSValueRef value;
    const char* text;
    uint32_t length;
    bool isProtected;
  };

  // Becomes the thread's innermost scope. `self` is the object whose method is called.
  Scope(JSContextRef context, HandleTable::Self self);
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
  ~Scope();

  // The thread's innermost scope, made when there is none.
  static Scope& Current(JSContextRef context);
  // The thread's innermost scope, or null.
  static Scope* Innermost();
  // The entry of a handle of this thread's scopes; null when its scope has ended.
  static const Entry* Find(Word handle);
  // Should the handle be of a draft of a method that runs: makes all of that method's drafts objects.
  static void SettleDraft(Word handle);
  // For what the call or request that the thread is in makes; null outside, and while another thread has drafts.
  static Drafts* NewDrafts();
  // The same, if there are any.
  static Drafts* DraftsInHand() { return Innermost() != nullptr ? Innermost()->drafts_.get() : nullptr; }

  // The caller keeps the value alive as long as the scope.
  Word AddRooted(JSValueRef value);
  // The scope keeps the value alive.
  Word AddProtected(JSValueRef value);
  // The string of the bytes, none of which is a NUL. They are copied.
  Word AddString(const char* bytes, uint32_t length);
  // Keeps an object alive that has a handle of its own.
  void Protect(JSValueRef value) { AddProtected(value); }
  // A copy with a NUL behind it, good as long as the scope.
  const char* AddText(const char* bytes, size_t length);

  const HandleTable::Self& GetSelf() const { return self_; }

 private:
  friend class LooseScopes;
  static constexpr size_t kInline = 8;
  static constexpr size_t kMostSpare = 8192;

  static std::vector<Entry>& SpareEntries();
  Word Add(const Entry& entry);
  const Entry* At(Word index) const;

  const JSContextRef context_;
  const HandleTable::Self self_;
  Scope* const outer_;
  const Word serial_;
  size_t count_ = 0;
  size_t protected_ = 0;  // of the entries
  size_t texts_ = 0;      // that are no entry's
  // On the stack, where the collector sees what the entries name. Only the first count_ are initialised: a
  // call without arguments pays for none.
  union {
    std::array<Entry, kInline> first_;
  };
  std::vector<Entry> more_;
  TextArena arena_;
  Drafts::Owner drafts_;
};

// A thread that is not the script's enters and leaves; nested pairs count as one.
void BeginRequestScope(JSContextRef context);
void EndRequestScope();

}  // namespace sorel

#endif
