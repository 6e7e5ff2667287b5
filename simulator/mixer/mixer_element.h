// One element of the simulated card: what a person says about it, and what a program may set it to. Texts in, plain
// values out.
#ifndef ZQSIM_MIXER_ELEMENT_H
#define ZQSIM_MIXER_ELEMENT_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

enum class ElementType { kInteger, kInteger64, kBoolean, kEnumerated, kBytes };

// Left and right.
using ChannelValues = std::array<int64_t, 2>;

struct MixerElement {
  ElementType type = ElementType::kInteger;
  int64_t min = 0;
  int64_t max = 100;
  ChannelValues values{};  // each in the range
};

// As the settings file has them; empty where it has nothing.
struct ElementTexts {
  std::string type, min, max, value;
};

// Nothing when the type is none of
//   integer, integer64   min to max
//   boolean              0 or 1, whatever min and max are
//   enumerated           an item, 0 to max (at most 999)
//   bytes                0 to 255
// A limit that is no number is the default (0, 100); a maximum below the minimum is the minimum. A value is one
// number for both channels or two with a comma between; one that is no number, or outside the range, is the nearest
// end, the minimum for no number.
std::optional<MixerElement> ParseElement(const ElementTexts& texts);

// As the settings file holds them.
std::string ChannelText(const ChannelValues& values);

// Whether the card takes these; a driver refuses, and keeps the old ones, when one is outside the range.
bool Takes(const MixerElement& element, const ChannelValues& values);

#endif
