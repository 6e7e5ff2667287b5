// Standby, over the X server's power saving (DPMS).
#include <X11/Xlib.h>

#include <atomic>

#include "DisplayLibrary.h"
#include "ZQScreen.h"
#include "ZQUtilTrace.h"
// After Xlib.h, whose types it uses.
#include <X11/extensions/dpms.h>

namespace {

// Seconds without input until each level; 0 is never.
struct StandbyTimeouts {
  CARD16 standby = 0;
  CARD16 suspend = 0;
  CARD16 off = 0;
};

constexpr StandbyTimeouts kUsualTimeouts{900, 1200, 1800};

// While it lives the end of one connection's server is a failure of what is asked, where Xlib would end the process.
// Other connections' ends stay with the process's handler, which comes back with this object's end. Script thread.
class SurvivingServersEnd {
 public:
  explicit SurvivingServersEnd(Display* display) {
    ours = display;
    XSetIOErrorExitHandler(display, LiveOn, nullptr);
    others = XSetIOErrorHandler(OnEnd);
    if (others.load() != nullptr) return;
    // None was set: Xlib names its own when it is asked to take it back.
    XSetIOErrorHandler(nullptr);
    others = XSetIOErrorHandler(OnEnd);
  }
  SurvivingServersEnd(const SurvivingServersEnd&) = delete;
  SurvivingServersEnd& operator=(const SurvivingServersEnd&) = delete;
  ~SurvivingServersEnd() { XSetIOErrorHandler(others); }

 private:
  static int OnEnd(Display* display) {
    const XIOErrorHandler handler = others;
    return display == ours || handler == nullptr ? 0 : handler(display);
  }
  static void LiveOn(Display* /*display*/, void* /*data*/) {}

  static inline std::atomic<Display*> ours = nullptr;
  static inline std::atomic<XIOErrorHandler> others = nullptr;
};

bool HasPowerSaving(Display* display) {
  int firstEvent = 0;
  int firstError = 0;
  return DPMSQueryExtension(display, &firstEvent, &firstError) != False;
}

// All 0 when the server does not say.
StandbyTimeouts Timeouts(Display* display) {
  StandbyTimeouts now;
  if (!DPMSGetTimeouts(display, &now.standby, &now.suspend, &now.off)) {
    ZQUTIL_TRACE("DPMSGetTimeouts failed.\n");
    return {};
  }
  return now;
}

// A level whose turn never comes would keep the display from the levels below: then all get the usual ones.
bool CompleteTimeouts(Display* display) {
  const StandbyTimeouts now = Timeouts(display);
  if (now.standby != 0 && now.suspend != 0 && now.off != 0) return true;
  if (DPMSSetTimeouts(display, kUsualTimeouts.standby, kUsualTimeouts.suspend, kUsualTimeouts.off))
    return true;
  ZQUTIL_TRACE("DPMSSetTimeouts failed.\n");
  return false;
}

void ForceStandby(Display* display) {
  XFlush(display);
  if (DPMSForceLevel(display, DPMSModeStandby)) {
    XFlush(display);
  } else {
    ZQUTIL_TRACE("DPMSForceLevel failed.\n");
  }
}

}  // namespace

void ZQScreen::ScreenStandby() {
  ZQUTIL_TRACE("In ScreenStandby\n");
  // Never closed: a server whose last connection closes starts anew, which would light the display again.
  Display* const display = LoadDisplayLibrary() ? XOpenDisplay(nullptr) : nullptr;
  if (display == nullptr) {
    ZQUTIL_TRACE("XOpenDisplay failed.\n");
    return;
  }
  const SurvivingServersEnd surviving(display);
  if (!HasPowerSaving(display)) {
    ZQUTIL_TRACE("DPMSQueryExtension failed.\n");
    return;
  }
  if (!DPMSCapable(display)) ZQUTIL_TRACE("DPMSCapable failed.\n");
  if (!DPMSEnable(display)) ZQUTIL_TRACE("DPMSEnable failed.\n");
  if (CompleteTimeouts(display)) ForceStandby(display);
}
