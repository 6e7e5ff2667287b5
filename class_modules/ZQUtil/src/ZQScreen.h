// The screen settings: backlight brightness, contrast, automatic dimming on or off.
#ifndef ZQUTIL_ZQSCREEN_H
#define ZQUTIL_ZQSCREEN_H

#include <atomic>
#include <cstdint>

#include "module_api.h"

// Automatic dimming is on. Written on the script thread, polled by the light-sensor thread.
extern std::atomic<bool> bAutoMode;

// Set on the script thread, read by the queue thread when it saves them.
class ZQUTIL_API ZQScreen {
 public:
  // Brightness as stored (scripts use 0 to 100), contrast in board units (16 to 30).
  ZQScreen(bool startSensor, int32_t brightness, int32_t contrast);

  int32_t getBrightness() const;
  // Schedules a save, which also sets the backlight.
  void setBrightness(int32_t level);
  int32_t getContrast() const;
  void setContrast(int32_t boardUnits);
  bool GetDimMode() const { return bAutoMode; }
  // Saved at once, on a thread of its own.
  void SetDimMode(bool on);

  int32_t BoardContrastToGUIContrast(int32_t board) const;
  int32_t GUIContrastToBoardContrast(int32_t step) const;

 private:
  std::atomic<int32_t> brightness;
  std::atomic<int32_t> contrast;
};

#endif
