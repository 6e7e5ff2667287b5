// What the radio answers to each request, by what a person has set.
#ifndef ZQSIM_RADIO_ANSWERS_H
#define ZQSIM_RADIO_ANSWERS_H

#include <linux/wireless.h>

#include "radio_settings.h"

// What the driver says of the link; what its own settings leave open comes from the first cell with its name. All zeros
// while the radio has joined nothing.
iw_quality LinkQuality(const RadioSettings& settings);

// 0, or -1 and errno.
int AnswerRadio(RadioRequest which, const RadioSettings& settings, iwreq& request);

#endif
