#include "ZQScreen.h"

#include "BrightnessScale.h"
#include "ContrastScale.h"
#include "ZQUtil.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "light_sensor.h"
#include "zq_ini.h"
#include "zq_thread.h"

std::atomic<bool> bAutoMode = false;
std::atomic<bool> exiting = false;
std::atomic<int32_t> ZQScreenInstanceCount = 0;

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQScreen";

void StartLightSensor(ZQScreen* screen) {
  const uint32_t thread = zq__beginthread(threadAutoScreenDim, screen, nullptr, kSourceTag, __LINE__);
  // Handle 0 would name the thread that runs here.
  if (thread != 0) zq_ThreadSetName(thread, "Light Sensor Thread");
}

}  // namespace

ZQScreen::ZQScreen(bool startSensor, int32_t brightness_, int32_t contrast_)
    : brightness(brightness_), contrast(contrast_) {
  ZQUTIL_TRACE("ZQUtil Setting Brightness to %d\n", brightness_);
  ZQUTIL_TRACE("ZQUtil Setting Contrast to %d\n", contrast_);
  bAutoMode = zq_GetINIFileAffirmative(kConfigSection, "autolight", "false", kSettingsFile);
  exiting = false;
  if (!startSensor) return;
  sensorState = 0;
  startBrightness = brightness_;
  ZQUTIL_TRACE("Spawning Light Sensor Thread\n");
  sharesSensor = true;
  if (++ZQScreenInstanceCount == 1) StartLightSensor(this);
}

ZQScreen::~ZQScreen() {
  // One that never asked for the thread must not end it for those that did.
  if (sharesSensor && --ZQScreenInstanceCount == 0) exiting = true;
}

int32_t ZQScreen::getBrightness() const {
  const int32_t level = brightness;
  ZQUTIL_TRACE("getBrightness returning %d\n", level);
  return level;
}

void ZQScreen::setBrightness(int32_t level) {
  ZQUTIL_TRACE("setBrightness %d (%d)\n", level, brightness.load());
  brightness = level;
  ZQUtil::AsyncConfigWrite(kConfigBrightness);
}

int32_t ZQScreen::getContrast() const {
  const int32_t units = contrast;
  ZQUTIL_TRACE("getContrast returning %d\n", units);
  return units;
}

void ZQScreen::setContrast(int32_t boardUnits) {
  ZQUTIL_TRACE("setContrast %d\n", boardUnits);
  contrast = boardUnits;
  ZQUtil::AsyncConfigWrite(kConfigContrast);
}

void ZQScreen::SetDimMode(bool on) {
  bAutoMode = on;
  ZQUtil::my_WriteINIFileString(kConfigSection, "autolight", on ? "true" : "false", kSettingsFile);
}

int32_t ZQScreen::BoardBrightnessToGUIBrightness(int32_t board) const {
  return BrightnessPercentOfBoard(board);
}

int32_t ZQScreen::GUIBrightnessToBoardBrightness(int32_t percent) const {
  return BrightnessBoardOfPercent(percent);
}

int32_t ZQScreen::BoardContrastToGUIContrast(int32_t board) const {
  return ContrastStepOfBoard(board);
}

int32_t ZQScreen::GUIContrastToBoardContrast(int32_t step) const {
  return ContrastBoardOfStep(step);
}
