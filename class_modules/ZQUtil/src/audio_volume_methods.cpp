// The volume methods of the script class. Without the audio object each returns success and does nothing.
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "audio_volume.h"
#include "setting_methods.h"

namespace {

void ReturnVolume(const ZQAudioVolume* volumes, int32_t (ZQAudioVolume::*getter)() const, zq_Value* rval) {
  if (volumes == nullptr) return;
  const DecimalText answer(kPercent.Clamp((volumes->*getter)()));
  ZQUTIL_TRACE("ZQUtil Returning %s\n", answer.text);
  ReturnString(answer.text, rval);
}

void SetVolume(ZQAudioVolume* volumes, void (ZQAudioVolume::*setter)(int32_t), uint32_t argc,
               const zq_Value* argv) {
  if (volumes == nullptr) return;
  const auto percent = NumberArgument(argc, argv, kPercent);
  if (!percent) return;
  ZQUTIL_TRACE("ZQUtil Setting %d\n", *percent);
  (volumes->*setter)(*percent);
}

}  // namespace

int32_t ZQUtil::GetPhoneVolume(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetPhoneVolume\n");
  ReturnVolume(audioVolume, &ZQAudioVolume::getPhoneVolume, rval);
  return 1;
}

int32_t ZQUtil::SetPhoneVolume(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetPhoneVolume\n");
  SetVolume(audioVolume, &ZQAudioVolume::setPhoneVolume, argc, argv);
  return 1;
}

int32_t ZQUtil::MutePhone(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to mutePhone\n");
  if (audioVolume != nullptr) audioVolume->MutePhone();
  return 1;
}

int32_t ZQUtil::UnmutePhone(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to unmutePhone\n");
  if (audioVolume != nullptr) audioVolume->UnmutePhone();
  return 1;
}

int32_t ZQUtil::GetMediaVolume(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetMediaVolume\n");
  ReturnVolume(audioVolume, &ZQAudioVolume::getMediaVolume, rval);
  return 1;
}

int32_t ZQUtil::SetMediaVolume(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetMediaVolume\n");
  SetVolume(audioVolume, &ZQAudioVolume::setMediaVolume, argc, argv);
  return 1;
}

int32_t ZQUtil::GetMicVolume(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetMicVolume\n");
  ReturnVolume(audioVolume, &ZQAudioVolume::getMicVolume, rval);
  return 1;
}

int32_t ZQUtil::SetMicVolume(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetMicVolume\n");
  SetVolume(audioVolume, &ZQAudioVolume::setMicVolume, argc, argv);
  return 1;
}

int32_t ZQUtil::MuteMic(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to muteMic\n");
  if (audioVolume != nullptr) audioVolume->MuteMic();
  return 1;
}

int32_t ZQUtil::UnmuteMic(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  // The text is spelled so.
  ZQUTIL_TRACE("ZQUtil GUI Call to UnuteMic\n");
  if (audioVolume != nullptr) audioVolume->UnmuteMic();
  return 1;
}
