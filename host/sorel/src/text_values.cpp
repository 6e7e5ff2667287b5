#include "text_values.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "js_text.h"
#include "runtime.h"

namespace sorel {
namespace {

JSValueRef Make(JSContextRef context, const char* text, size_t length) {
  return JSValueMakeString(context, JsText(MakeJsString(text, length)).Get());
}

// A short text, and zeros behind it: no text has a NUL, so different texts differ.
struct ShortText {
  static constexpr size_t kLongest = 64;

  ShortText() = default;
  ShortText(const char* text, size_t length) { memcpy(words.data(), text, length); }
  bool operator==(const ShortText&) const = default;

  // Of a text of that length.
  uint64_t Hash(size_t length) const {
    uint64_t hash = 0;
    for (size_t i = 0; i * sizeof(uint64_t) < length; ++i) {
      hash = (hash ^ words[i]) * 0x9E3779B97F4A7C15;
      hash ^= hash >> 32;
    }
    return hash;
  }

  std::array<uint64_t, kLongest / sizeof(uint64_t)> words{};
};

// Where a text would be kept. It is, in the place of the one before, when it is asked for twice in a row: texts that
// never come again cost no more than their hash, and drop none that does.
class Place {
 public:
  JSValueRef Value(JSContextRef context, const ShortText& text, uint64_t hash, size_t length) {
    if (value_ != nullptr && text_ == text) return value_;
    JSValueRef made = Make(context, reinterpret_cast<const char*>(text.words.data()), length);
    if (asked_ != hash) {
      asked_ = hash;
      return made;
    }
    JSValueProtect(context, made);
    if (value_ != nullptr) JSValueUnprotect(context, value_);
    value_ = made;
    text_ = text;
    return made;
  }

 private:
  uint64_t asked_ = 0;  // the hash of the last that was not the one kept
  JSValueRef value_ = nullptr;
  ShortText text_;
};

// Guarded by the engine's lock.
constinit std::array<Place, 1024> g_places{};

}  // namespace

JSValueRef ValueOfText(JSContextRef context, const char* text, size_t length) {
  const EngineLock lock;
  return ValueOfTextWithLock(context, text, length);
}

JSValueRef ValueOfTextWithLock(JSContextRef context, const char* text, size_t length) {
  if (length >= ShortText::kLongest) return Make(context, text, length);
  const ShortText key(text, length);
  const uint64_t hash = key.Hash(length);
  return g_places[hash % g_places.size()].Value(context, key, hash, length);
}

}  // namespace sorel
