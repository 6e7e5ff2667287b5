#include "native_audio.h"

#include "mixer_level.h"

snd_ctl_t* alsaCtl = nullptr;

namespace {

constexpr char kCard[] = "hw:0";
constexpr char kSpeakerVolume[] = "Master Playback Volume";
constexpr char kSpeakerSwitch[] = "Master Playback Switch";
constexpr char kCaptureVolume[] = "Capture Volume";
// A value of the codec's register, whatever the microphone volume of the settings is.
constexpr long kCaptureValue = 7;
constexpr unsigned int kChannels = 2;

void Name(snd_ctl_elem_id_t* id, const char* name) {
  snd_ctl_elem_id_set_interface(id, SND_CTL_ELEM_IFACE_MIXER);
  snd_ctl_elem_id_set_name(id, name);
  snd_ctl_elem_id_set_index(id, 0);
}

// A card may lack an element or refuse a value; the others are set all the same.
void Write(snd_ctl_elem_value_t* value, const char* name) {
  snd_ctl_elem_id_t* id = nullptr;
  snd_ctl_elem_id_alloca(&id);
  Name(id, name);
  snd_ctl_elem_value_set_id(value, id);
  snd_ctl_elem_write(alsaCtl, value);
}

// `set` puts a number into a value: one call of the library for each kind of number.
template <typename Number>
void Write(const char* name, void (*set)(snd_ctl_elem_value_t*, unsigned int, Number), Number number) {
  snd_ctl_elem_value_t* value = nullptr;
  snd_ctl_elem_value_alloca(&value);
  for (unsigned int channel = 0; channel < kChannels; ++channel) set(value, channel, number);
  Write(value, name);
}

void WriteNumber(const char* name, long number) {
  Write(name, snd_ctl_elem_value_set_integer, number);
}

}  // namespace

void native_initialize(int level) {
  if (alsaCtl == nullptr) {
    snd_ctl_t* opened = nullptr;
    if (snd_ctl_open(&opened, kCard, SND_CTL_ASYNC) < 0) return;
    alsaCtl = opened;
  }
  native_set_speaker_level(true, level);
  WriteNumber(kSpeakerSwitch, 1);
  WriteNumber(kCaptureVolume, kCaptureValue);
}

void native_set_speaker_level(bool /*flag*/, int level) {
  if (alsaCtl == nullptr) return;
  snd_ctl_elem_id_t* id = nullptr;
  snd_ctl_elem_id_alloca(&id);
  Name(id, kSpeakerVolume);
  // All zero, which is no type, for an element that the card lacks.
  snd_ctl_elem_info_t* info = nullptr;
  snd_ctl_elem_info_alloca(&info);
  snd_ctl_elem_info_set_id(info, id);
  snd_ctl_elem_info(alsaCtl, info);
  switch (snd_ctl_elem_info_get_type(info)) {
    case SND_CTL_ELEM_TYPE_INTEGER:
      WriteNumber(kSpeakerVolume, SpeakerValue(MixerKind::kInteger, snd_ctl_elem_info_get_max(info), level));
      return;
    case SND_CTL_ELEM_TYPE_INTEGER64:
      Write<long long>(kSpeakerVolume, snd_ctl_elem_value_set_integer64,
                       SpeakerValue(MixerKind::kInteger64, snd_ctl_elem_info_get_max64(info), level));
      return;
    default:
      WriteNumber(kSpeakerVolume, SpeakerValue(MixerKind::kOther, 0, level));
  }
}
