// The screen settings: backlight brightness, contrast, automatic dimming on or off.
#ifndef ZQUTIL_ZQSCREEN_H
#define ZQUTIL_ZQSCREEN_H

#include <atomic>
#include <cstdint>

#include "module_api.h"

// Automatic dimming is on. Written on the script thread, polled by the light-sensor thread.
extern std::atomic<bool> bAutoMode;
// The light-sensor thread is to end. Set when the last screen goes, cleared by each new one.
extern std::atomic<bool> exiting;
// Screens that asked for the light-sensor thread; the first one starts it.
extern std::atomic<int32_t> ZQScreenInstanceCount;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int32_t>::is_always_lock_free);

// Set on the script thread, read by the queue thread when it saves them.
class ZQUTIL_API ZQScreen {
 public:
  // Brightness as stored (scripts use 0 to 100), contrast in board units (16 to 30).
  ZQScreen(bool startSensor, int32_t brightness, int32_t contrast);
  ZQScreen(const ZQScreen&) = delete;
  ZQScreen& operator=(const ZQScreen&) = delete;
  // Returns at once; the light-sensor thread ends in its own time.
  ~ZQScreen();

  int32_t getBrightness() const;
  // Schedules a save, which also sets the backlight.
  void setBrightness(int32_t level);
  int32_t getContrast() const;
  void setContrast(int32_t boardUnits);
  bool GetDimMode() const { return bAutoMode; }
  // Saved at once, on a thread of its own.
  void SetDimMode(bool on);

  // Puts the default X display into standby, and power saving on; failures are traced. Each call opens a
  // connection to the server and keeps it. Script thread only. A server that ends while it is asked makes the rest
  // fail. One that ends while the connection is made, or refuses a request, is a matter of the process's Xlib error
  // handlers, which are the host's: the ones that Xlib sets end the process.
  void ScreenStandby();

  // Backlight 0..255 of the board and 0..100 of the user, in single precision, rounded toward zero.
  int32_t BoardBrightnessToGUIBrightness(int32_t board) const;
  int32_t GUIBrightnessToBoardBrightness(int32_t percent) const;
  int32_t BoardContrastToGUIContrast(int32_t board) const;
  int32_t GUIContrastToBoardContrast(int32_t step) const;

 private:
  std::atomic<int32_t> brightness;
  std::atomic<int32_t> contrast;
  // As of the start of the light-sensor thread; kept for those who debug it.
  int32_t startBrightness = 0;
  int32_t sensorState = 0;
  bool sharesSensor = false;
};

#endif
