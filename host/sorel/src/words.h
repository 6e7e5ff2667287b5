// How a script value stands in one machine word: void, null, tagged integers, and handles.
//
//   ....0000  handle of an object: generation above, index in the handle table below
//   ....0100  handle of a value in a scope: the scope's serial number above, index in the scope below
//   .......1  integer or void, a 32-bit word
//
// A handle is a number, not an address: one that is out of date is found out, and nothing is followed.
#ifndef SOREL_WORDS_H
#define SOREL_WORDS_H

#include <cstdint>
#include <limits>

#include "engine.h"

namespace sorel {

using Word = zq_Value;

constexpr int32_t kIntMin = -(1 << 30) + 1;  // -(1 << 30) would be the word for void
constexpr int32_t kIntMax = (1 << 30) - 1;

constexpr bool IsInt(Word word) {
  return (word & 1) != 0 && word <= 0xFFFFFFFFU && word != ZQ_VALUE_VOID;
}
constexpr int32_t ToInt(Word word) {
  return static_cast<int32_t>(static_cast<uint32_t>(word)) >> 1;
}
constexpr bool FitsInt(double number) {
  return number >= kIntMin && number <= kIntMax &&
         number == static_cast<double>(static_cast<int32_t>(number));
}

constexpr int kWordBits = std::numeric_limits<Word>::digits;
constexpr int kTagBits = 3;
constexpr Word kTagMask = 7;
constexpr Word kObjectTag = 0;
constexpr Word kScopedTag = 4;

struct HandleParts {
  Word number;  // generation or serial, never 0
  Word index;
};

// Bits of the index; those above it are the number's.
constexpr int kObjectIndexBits = kWordBits == 64 ? 29 : 17;
constexpr int kScopedIndexBits = kWordBits == 64 ? 21 : 13;

template <int kIndexBits>
struct HandleLayout {
  static constexpr Word kMaxIndex = (Word{1} << kIndexBits) - 1;
  static constexpr Word kMaxNumber = (Word{1} << (kWordBits - kTagBits - kIndexBits)) - 1;

  static constexpr Word Make(HandleParts parts, Word tag) {
    return (((parts.number << kIndexBits) | parts.index) << kTagBits) | tag;
  }
  static constexpr HandleParts Parts(Word word) {
    return {word >> (kTagBits + kIndexBits), (word >> kTagBits) & kMaxIndex};
  }
};

using ObjectLayout = HandleLayout<kObjectIndexBits>;
using ScopedLayout = HandleLayout<kScopedIndexBits>;

constexpr bool IsObjectHandle(Word word) {
  return word != ZQ_VALUE_NULL && (word & kTagMask) == kObjectTag;
}
constexpr bool IsScopedHandle(Word word) {
  return (word & kTagMask) == kScopedTag;
}

inline Word WordOf(const void* handle) {
  return reinterpret_cast<Word>(handle);
}
inline void* PointerOf(Word handle) {
  return reinterpret_cast<void*>(handle);
}

}  // namespace sorel

#endif
