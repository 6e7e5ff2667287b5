// The screen methods of the script class. Without the screen object each returns success and does nothing.
#include <strings.h>

#include "ZQScreen.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "setting_methods.h"

namespace {

constexpr SettingRange kContrastSteps{1, 10};

}  // namespace

int32_t ZQUtil::GetBrightness(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetBrightness\n");
  if (screen != nullptr) ReturnString(DecimalText(kPercent.Clamp(screen->getBrightness())).text, rval);
  return 1;
}

int32_t ZQUtil::SetBrightness(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetBrightness\n");
  const auto level = NumberArgument(argc, argv, kPercent);
  if (screen != nullptr && level) screen->setBrightness(*level);
  return 1;
}

int32_t ZQUtil::GetContrast(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetContrast\n");
  if (screen == nullptr) return 1;
  const int32_t step = kContrastSteps.Clamp(screen->BoardContrastToGUIContrast(screen->getContrast()));
  ReturnString(DecimalText(step).text, rval);
  return 1;
}

int32_t ZQUtil::SetContrast(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetContrast\n");
  const auto step = NumberArgument(argc, argv, kContrastSteps);
  if (screen != nullptr && step) screen->setContrast(screen->GUIContrastToBoardContrast(*step));
  return 1;
}

int32_t ZQUtil::GetDimMode(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetDimMode\n");
  if (screen != nullptr) ReturnString(screen->GetDimMode() ? "TRUE" : "FALSE", rval);
  return 1;
}

int32_t ZQUtil::SetDimMode(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetDimMode\n");
  const ScriptArguments arguments(argc, argv);
  if (screen == nullptr || !arguments.Present(0)) return 1;
  if (const char* const text = arguments.Text(0)) screen->SetDimMode(strcasecmp(text, "true") == 0);
  return 1;
}

int32_t ZQUtil::ScreenStandby(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to ScreenStandby\n");
  if (screen != nullptr) screen->ScreenStandby();
  return 1;
}
