// What the radio answers to each request, by what a person has set.
#ifndef ZQSIM_RADIO_ANSWERS_H
#define ZQSIM_RADIO_ANSWERS_H

#include <linux/wireless.h>

#include "radio_settings.h"

// 0, or -1 and errno.
int AnswerRadio(RadioRequest which, const RadioSettings& settings, iwreq& request);

#endif
