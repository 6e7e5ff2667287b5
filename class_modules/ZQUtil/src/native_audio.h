// The sound card's mixer. Script thread only.
#ifndef ZQUTIL_NATIVE_AUDIO_H
#define ZQUTIL_NATIVE_AUDIO_H

#include <alsa/asoundlib.h>

#include <cstdint>

#include "module_api.h"

// The card's control, null until it could be opened. Kept for the life of the process, so that a module object made
// later finds it open.
extern snd_ctl_t* alsaCtl;

// Sets the mixer as a start wants it: the output at `level` percent and on, the capture at its fixed register value.
// Without a card nothing happens; the next call looks for one again.
ZQUTIL_API void native_initialize(int level);

// Sets the output's volume, in percent of its maximum and 95 at most. Nothing happens without a card. The flag has no
// meaning.
ZQUTIL_API void native_set_speaker_level(bool flag, int level);

#endif
