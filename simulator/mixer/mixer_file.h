// The card as DIR/hw/mixer.ini has it. As it is at each call, because a person edits the file while programs run.
#ifndef ZQSIM_MIXER_FILE_H
#define ZQSIM_MIXER_FILE_H

#include <cstddef>
#include <optional>

#include "mixer_element.h"

// The elements that the card may have, each of the mixer's interface and with index 0.
constexpr const char* kElementNames[] = {"Master Playback Volume", "Master Playback Switch",
                                         "Capture Volume"};
constexpr size_t kElements = sizeof kElementNames / sizeof kElementNames[0];

// Whether the device has a card: the file is there and does not say "present = no" in its section [card].
bool CardIsPresent();
// Nothing when the card lacks the element: its section is missing or says no type that there is.
std::optional<MixerElement> ReadElement(size_t element);
// False when the file cannot be written.
bool StoreValues(size_t element, const ChannelValues& values);

#endif
