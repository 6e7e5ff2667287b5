#include "scope.h"

#include <atomic>
#include <memory>

namespace sorel {
namespace {

constinit thread_local Scope* t_innermost = nullptr;

// Serial numbers are unique in the process, so that a handle given to another thread is refused there; each
// thread takes them by the block.
class Serials {
 public:
  Word Next() {
    if (next_ == end_) {
      next_ = g_nextBlock.fetch_add(kBlock, std::memory_order_relaxed);
      end_ = next_ + kBlock;
    }
    const Word serial = next_++ & ScopedLayout::kMaxNumber;
    return serial == 0 ? Next() : serial;
  }

 private:
  static constexpr Word kBlock = 1024;
  static inline std::atomic<Word> g_nextBlock{kBlock};
  Word next_ = 0;
  Word end_ = 0;
};
constinit thread_local Serials t_serials;

}  // namespace

// Values of a thread outside any call or request: two scopes, the older of which is dropped when the younger
// is full.
class LooseScopes {
 public:
  Scope& Get(JSContextRef context) {
    if (younger_ == nullptr || younger_->count_ + younger_->texts_ >= kKept) {
      older_ = std::move(younger_);
      younger_ = std::make_unique<Scope>(context, HandleTable::Self{});
      t_innermost = nullptr;
    }
    return *younger_;
  }
  const Scope::Entry* Find(HandleParts parts) const {
    for (const Scope* scope : {younger_.get(), older_.get()}) {
      if (scope != nullptr && scope->serial_ == parts.number) return scope->At(parts.index);
    }
    return nullptr;
  }

 private:
  static constexpr size_t kKept = 256;
  std::unique_ptr<Scope> younger_;
  std::unique_ptr<Scope> older_;
};

namespace {

thread_local LooseScopes t_loose;

struct Request {
  int depth = 0;
  std::unique_ptr<Scope> scope;
};
thread_local Request t_request;

}  // namespace

Scope::Scope(JSContextRef context, HandleTable::Self self)
    : context_(context), self_(self), outer_(t_innermost), serial_(t_serials.Next()) {
  t_innermost = this;
}

// Room for the entries of a call that has many, from one to the next. The script thread's.
std::vector<Scope::Entry>& Scope::SpareEntries() {
  static auto& spare = *new std::vector<Entry>;
  return spare;
}

Scope::~Scope() {
  if (t_innermost == this) t_innermost = outer_;
  for (size_t i = 0; protected_ > 0 && i < count_; ++i) {
    const Entry& entry = *At(i);
    if (!entry.isProtected) continue;
    JSValueUnprotect(context_, entry.value);
    --protected_;
  }
  if (count_ > kInline && more_.capacity() <= kMostSpare && OnScriptThread()) {
    more_.clear();
    std::swap(more_, SpareEntries());
  }
}

Scope& Scope::Current(JSContextRef context) {
  return t_innermost != nullptr ? *t_innermost : t_loose.Get(context);
}

Scope* Scope::Innermost() {
  return t_innermost;
}

const Scope::Entry* Scope::Find(Word handle) {
  if (!IsScopedHandle(handle)) return nullptr;
  const HandleParts parts = ScopedLayout::Parts(handle);
  for (const Scope* scope = t_innermost; scope != nullptr; scope = scope->outer_) {
    if (scope->serial_ == parts.number) return scope->At(parts.index);
  }
  return t_loose.Find(parts);
}

const Scope::Entry* Scope::At(Word index) const {
  if (index >= count_) return nullptr;
  return index < kInline ? &first_[index] : &more_[index - kInline];
}

Word Scope::Add(const Entry& entry) {
  if (count_ < kInline) {
    first_[count_] = entry;
  } else {
    if (count_ == kInline && OnScriptThread()) std::swap(more_, SpareEntries());
    more_.push_back(entry);
  }
  return ScopedLayout::Make({serial_, count_++}, kScopedTag);
}

Word Scope::AddRooted(JSValueRef value) {
  return Add({value, nullptr, 0, false});
}

Word Scope::AddProtected(JSValueRef value) {
  JSValueProtect(context_, value);
  ++protected_;
  return Add({value, nullptr, 0, true});
}

Word Scope::AddString(const char* bytes, uint32_t length) {
  return Add({nullptr, arena_.Add(bytes, length), length, false});
}

const char* Scope::AddText(const char* bytes, size_t length) {
  ++texts_;
  return arena_.Add(bytes, length);
}

Drafts* Scope::NewDrafts() {
  if (t_innermost == nullptr) return nullptr;
  Drafts::Owner& drafts = t_innermost->drafts_;
  if (drafts == nullptr) drafts = Drafts::Take();
  return drafts.get();
}

void Scope::SettleDraft(Word handle) {
  for (Scope* scope = t_innermost; scope != nullptr; scope = scope->outer_) {
    if (scope->drafts_ != nullptr && scope->drafts_->Has(handle)) {
      scope->drafts_->Settle(scope->context_, *scope);
      return;
    }
  }
}

void BeginRequestScope(JSContextRef context) {
  if (t_request.depth++ == 0 && Scope::Innermost() == nullptr) {
    t_request.scope = std::make_unique<Scope>(context, HandleTable::Self{});
  }
}

void EndRequestScope() {
  if (t_request.depth == 0 || --t_request.depth > 0) return;
  t_request.scope.reset();
}

}  // namespace sorel
