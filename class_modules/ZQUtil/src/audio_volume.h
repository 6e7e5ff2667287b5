// The audio volumes of the user interface, in percent.
#ifndef ZQUTIL_AUDIO_VOLUME_H
#define ZQUTIL_AUDIO_VOLUME_H

#include <atomic>
#include <cstdint>

#include "module_api.h"

// Set on the script thread, read by the queue thread when it saves them.
class ZQUTIL_API ZQAudioVolume {
 public:
  // `phone` is only traced: phone and media volume are one value, and the media setting is the one that
  // counts.
  ZQAudioVolume(bool initialise, int32_t media, int32_t phone, int32_t mic);

  // Called after the volumes were saved; the mixer is programmed at start-up only, so there is nothing to do.
  void Initialize() {}

  int32_t getPhoneVolume() const { return volume; }
  int32_t getMediaVolume() const { return volume; }
  int32_t getMicVolume() const { return micVolume; }
  // Each setter schedules a save of all three volumes.
  void setPhoneVolume(int32_t percent);
  void setMediaVolume(int32_t percent);
  void setMicVolume(int32_t percent);

  void MutePhone();
  void UnmutePhone();
  void MuteMic();
  void UnmuteMic();

 private:
  void SetOutput(int32_t percent);

  std::atomic<int32_t> volume;      // the one output volume, phone and media alike
  std::atomic<int32_t> volumeCopy;  // always set with the volume; nothing reads it
  std::atomic<int32_t> micVolume;
};

#endif
