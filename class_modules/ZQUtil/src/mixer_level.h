// What the speaker's volume element is set to, over plain values.
#ifndef ZQUTIL_MIXER_LEVEL_H
#define ZQUTIL_MIXER_LEVEL_H

#include <cstdint>

// How an element holds its value, as far as it makes a difference here.
enum class MixerKind { kInteger, kInteger64, kOther };

// Beyond it the speaker distorts: a higher level counts as this one.
constexpr int32_t kHighestSpeakerLevel = 95;

// `level` percent of the element's maximum, truncated toward zero; 0 for an element that holds no numbers. A level
// below 0 gives a value below 0, which is the card's to refuse. The product is a 32-bit number, like the low half of
// the maximum that goes into it: it is made without a sign, where an overflow is defined to wrap, and gets its sign
// back.
constexpr int32_t SpeakerValue(MixerKind kind, int64_t maximum, int32_t level) {
  if (kind == MixerKind::kOther) return 0;
  const int32_t capped = level > kHighestSpeakerLevel ? kHighestSpeakerLevel : level;
  const uint32_t product = static_cast<uint32_t>(capped) * static_cast<uint32_t>(maximum);
  return static_cast<int32_t>(product) / 100;
}

#endif
