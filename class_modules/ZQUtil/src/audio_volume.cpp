#include "audio_volume.h"

#include "ZQUtil.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "native_audio.h"

ZQAudioVolume::ZQAudioVolume(bool initialise, int32_t media, int32_t phone, int32_t mic)
    : volume(media), volumeCopy(media), micVolume(mic) {
  ZQUTIL_TRACE("ZQUtil Audio initialized to %d %d %d\n", media, phone, mic);
  if (initialise) native_initialize(media);
}

void ZQAudioVolume::SetOutput(int32_t percent) {
  volume = percent;
  volumeCopy = percent;
  ZQUtil::AsyncConfigWrite(kConfigAudio);
}

void ZQAudioVolume::setPhoneVolume(int32_t percent) {
  SetOutput(percent);
}

void ZQAudioVolume::setMediaVolume(int32_t percent) {
  SetOutput(percent);
}

void ZQAudioVolume::setMicVolume(int32_t percent) {
  micVolume = percent;
  ZQUtil::AsyncConfigWrite(kConfigAudio);
}

void ZQAudioVolume::MutePhone() {
  ZQUTIL_TRACE("ZQUtil Mute Phone\n");
}

void ZQAudioVolume::UnmutePhone() {
  ZQUTIL_TRACE("ZQUtil Unmute Phone\n");
  setPhoneVolume(getPhoneVolume());
}

void ZQAudioVolume::MuteMic() {
  ZQUTIL_TRACE("ZQUtil Mute Mic\n");
}

void ZQAudioVolume::UnmuteMic() {
  ZQUTIL_TRACE("ZQUtil Unmute Mic\n");
}
