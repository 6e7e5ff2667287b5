#include "DisplayLibrary.h"

#include <X11/Xlib.h>
// After Xlib.h, whose types it uses.
#include <X11/extensions/dpms.h>

#include "zq_lazy_library.h"

namespace {

// Of the process's own: a library that is preloaded may stand for the X server.
zq_LazyLibrary g_x11("libX11.so.6", zq_LazyLibrary::kProcessFirst);
zq_LazyLibrary g_xext("libXext.so.6", zq_LazyLibrary::kProcessFirst);

}  // namespace

bool LoadDisplayLibrary() {
  return g_x11.Load() && g_xext.Load();
}

extern "C" {

ZQ_PASS_ON(g_x11, Display*, XOpenDisplay, (const char* name), (name))
ZQ_PASS_ON(g_x11, int, XFlush, (Display * display), (display))
ZQ_PASS_ON(g_x11, XIOErrorHandler, XSetIOErrorHandler, (XIOErrorHandler handler), (handler))
ZQ_PASS_ON(g_x11, void, XSetIOErrorExitHandler, (Display * display, XIOErrorExitHandler handler, void* data),
           (display, handler, data))

ZQ_PASS_ON(g_xext, Bool, DPMSQueryExtension, (Display * display, int* event, int* error),
           (display, event, error))
ZQ_PASS_ON(g_xext, Bool, DPMSCapable, (Display * display), (display))
ZQ_PASS_ON(g_xext, Status, DPMSEnable, (Display * display), (display))
ZQ_PASS_ON(g_xext, Bool, DPMSGetTimeouts, (Display * display, CARD16* standby, CARD16* suspend, CARD16* off),
           (display, standby, suspend, off))
ZQ_PASS_ON(g_xext, Status, DPMSSetTimeouts, (Display * display, CARD16 standby, CARD16 suspend, CARD16 off),
           (display, standby, suspend, off))
ZQ_PASS_ON(g_xext, Status, DPMSForceLevel, (Display * display, CARD16 level), (display, level))

}  // extern "C"
