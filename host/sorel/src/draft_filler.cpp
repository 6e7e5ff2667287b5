#include "draft_filler.h"

#include <array>

#include "js_text.h"
#include "property_names.h"
#include "scope.h"
#include "text_values.h"
#include "values.h"

namespace sorel {
namespace {

// What scripts' own functions do costs a tenth of the same through the engine's interface. They use nothing that a
// script could have replaced.
constexpr const char* kFillObjects = R"js((function(count, ...words) {
  const end = words.length;
  for (let at = count; at < end;) {
    const object = words[at++];
    for (let i = 0; i < count; ++i) object[words[i]] = words[at++];
  }
}))js";
constexpr const char* kFillArray = R"js((function(array, first, ...words) {
  const count = words.length;
  for (let i = 0; i < count; ++i) array[first + i] = words[i];
}))js";

// Null when the engine refuses.
JSObjectRef MakeFunction(JSContextRef context, const char* source) {
  JSValueRef function = JSEvaluateScript(context, JsText::Of(source).Get(), nullptr, nullptr, 1, nullptr);
  if (function == nullptr) return nullptr;
  JSValueProtect(context, function);
  return JSValueToObject(context, function, nullptr);
}

class Filler {
 public:
  Filler(JSContextRef context, const DraftBatch& batch) : context_(context), batch_(batch) {}

  // Fills the draft and those after it that are filled with it; how many.
  size_t Fill(size_t number) {
    const Draft& draft = batch_.drafts[number];
    if (draft.isArray) {
      FillArray(draft);
      return 1;
    }
    return FillAlike(number);
  }

 private:
  // Values of one call. On the stack, where the collector sees them.
  static constexpr size_t kWords = 2048;
  // What is less is not worth a call of a script's function.
  static constexpr size_t kLeastAlike = 4;
  static constexpr size_t kLeastElements = 8;

  const DraftProperty* At(uint32_t property) const {
    return property != kLastProperty ? &batch_.properties[property] : nullptr;
  }
  const DraftProperty* First(const Draft& draft) const { return At(draft.first); }
  const DraftProperty* Next(const DraftProperty* property) const { return At(property->next); }

  // Undefined for what is out of date: nothing can name that any more.
  JSValueRef ValueOfWord(Word word) const {
    if (const Draft* draft = FindDraft(batch_, word)) return draft->object;
    const Scope::Entry* const entry = Scope::Find(word);
    if (entry != nullptr && entry->value == nullptr)
      return ValueOfTextWithLock(context_, entry->text, entry->length);
    JSValueRef value = nullptr;
    return ValueOf(context_, word, &value) ? value : JSValueMakeUndefined(context_);
  }

  bool HasSameNames(const Draft& one, const Draft& other) const {
    const DraftProperty* a = First(one);
    const DraftProperty* b = First(other);
    while (a != nullptr && b != nullptr && a->key == b->key) {
      a = Next(a);
      b = Next(b);
    }
    return a == nullptr && b == nullptr;
  }

  void Push(JSValueRef word) { words_[count_++] = word; }
  void PushObject(const Draft& draft) {
    Push(draft.object);
    for (const auto* property = First(draft); property != nullptr; property = Next(property)) {
      Push(ValueOfWord(property->value));
    }
  }

  // False when it did not do all.
  bool Call(JSObjectRef function) {
    JSValueRef thrown = nullptr;
    if (function != nullptr) {
      JSObjectCallAsFunction(context_, function, nullptr, count_, words_.data(), &thrown);
    }
    count_ = 0;
    return function != nullptr && thrown == nullptr;
  }

  size_t FillAlike(size_t number) {
    const Draft& draft = batch_.drafts[number];
    size_t names = 0;
    for (const auto* property = First(draft); property != nullptr; property = Next(property)) ++names;
    if (names == 0) return 1;
    const size_t room = names + 1 < kWords ? (kWords - 1 - names) / (names + 1) : 0;
    size_t alike = 1;
    while (alike < room && number + alike < batch_.drafts.size() && !batch_.drafts[number + alike].isArray &&
           HasSameNames(draft, batch_.drafts[number + alike])) {
      ++alike;
    }
    if (alike >= kLeastAlike) {
      Push(JSValueMakeNumber(context_, static_cast<double>(names)));
      for (const auto* property = First(draft); property != nullptr; property = Next(property)) {
        Push(PropertyNames::Get().Key(context_, property->key));
      }
      for (size_t i = 0; i < alike; ++i) PushObject(batch_.drafts[number + i]);
      static JSObjectRef const function = MakeFunction(context_, kFillObjects);
      if (Call(function)) return alike;
    }
    for (size_t i = 0; i < alike; ++i) FillOneByOne(batch_.drafts[number + i]);
    return alike;
  }

  // A property that a setter of the script's refuses is left out.
  void FillOneByOne(const Draft& draft) const {
    for (const auto* property = First(draft); property != nullptr; property = Next(property)) {
      JSValueRef refused = nullptr;
      JSObjectSetPropertyForKey(context_, draft.object, PropertyNames::Get().Key(context_, property->key),
                                ValueOfWord(property->value), kJSPropertyAttributeNone, &refused);
    }
  }

  void FillArray(const Draft& draft) {
    for (const auto* element = First(draft); element != nullptr;) {
      const DraftProperty* const first = element;
      Push(draft.object);
      Push(JSValueMakeNumber(context_, first->key));
      uint64_t index = first->key;
      for (; element != nullptr && element->key == index && count_ < kWords; ++index) {
        Push(ValueOfWord(element->value));
        element = Next(element);
      }
      static JSObjectRef const function = MakeFunction(context_, kFillArray);
      const bool worthIt = count_ >= kLeastElements;
      if (!Call(worthIt ? function : nullptr)) FillOneByOne(draft.object, first, element);
    }
  }

  void FillOneByOne(JSObjectRef array, const DraftProperty* first, const DraftProperty* end) const {
    for (const auto* element = first; element != end; element = Next(element)) {
      JSValueRef refused = nullptr;
      JSObjectSetPropertyAtIndex(context_, array, element->key, ValueOfWord(element->value), &refused);
    }
  }

  const JSContextRef context_;
  const DraftBatch& batch_;
  size_t count_ = 0;
  // Only the first count_ are initialised.
  std::array<JSValueRef, kWords> words_;
};

}  // namespace

SOREL_VALUES_ON_STACK void FillDrafts(JSContextRef context, const DraftBatch& batch) {
  Filler filler(context, batch);
  for (size_t number = 0; number < batch.drafts.size();) number += filler.Fill(number);
}

}  // namespace sorel
