// The X server and its power saving (DPMS), at the calls of the X libraries, which the library needs for their
// names alone: a program that makes these calls brings them.
#include <X11/Xlib.h>
#include <dlfcn.h>
// After Xlib.h, whose types it uses.
#include <X11/extensions/dpms.h>

#include <cstdio>
#include <cstring>

#include "display_settings.h"
#include "hardware_file.h"
#include "next.h"
#include "world.h"

ZQSIM_NEXT(XOpenDisplay)
ZQSIM_NEXT(XCloseDisplay)
ZQSIM_NEXT(XFlush)
ZQSIM_NEXT(XSetIOErrorExitHandler)
ZQSIM_NEXT(DPMSQueryExtension)
ZQSIM_NEXT(DPMSCapable)
ZQSIM_NEXT(DPMSEnable)
ZQSIM_NEXT(DPMSGetTimeouts)
ZQSIM_NEXT(DPMSSetTimeouts)
ZQSIM_NEXT(DPMSForceLevel)

namespace {

constexpr char kSettingsFile[] = "/hw/display.ini";
constexpr char kCallsFile[] = "/hw/display.calls";
constexpr size_t kMostSettings = 4096;

// Every connection to the simulated server; nobody may look inside.
alignas(16) constinit char simulatedDisplay[4096] = {};

bool IsSimulated(const Display* display) {
  return reinterpret_cast<const char*>(display) == simulatedDisplay;
}

// The library's own function; null when the process has it nowhere. One that a module brought along is not in
// the order of libraries that NEXT follows.
template <typename Function>
Function Real(NextFunction* slot, const char* library, Function) {
  void* function = slot->Address();
  if (function == nullptr) {
    void* const loaded = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (loaded != nullptr) function = dlsym(loaded, slot->name);
    if (function != nullptr) slot->address.store(function, std::memory_order_release);
  }
  return reinterpret_cast<Function>(function);
}

// Passes a call on; 0 when there is nobody.
#define PASS(library, function, ...)                                                  \
  [&]() -> decltype(::function(__VA_ARGS__)) {                                        \
    const auto real = Real(&next_##function, library, &::function);                   \
    return real != nullptr ? real(__VA_ARGS__) : decltype(::function(__VA_ARGS__)){}; \
  }()
#define PASS_X11(function, ...) PASS("libX11.so.6", function, __VA_ARGS__)
#define PASS_XEXT(function, ...) PASS("libXext.so.6", function, __VA_ARGS__)

void NoteCall(const char* call) {
  char line[128];
  const int length = snprintf(line, sizeof(line), "%s\n", call);
  AppendHardware(kCallsFile, {line, static_cast<size_t>(length)});
}

DisplaySettings Settings() {
  char text[kMostSettings];
  return ParseDisplaySettings({text, ReadHardware(kSettingsFile, text, sizeof(text))});
}

// The display has changed: so has the file.
bool Store(const char* key, const char* value) {
  char text[kMostSettings];
  char changed[kMostSettings];
  const size_t length = ReplaceDisplayValue({text, ReadHardware(kSettingsFile, text, sizeof(text))}, key,
                                            value, changed, sizeof(changed));
  return length > 0 && ReplaceHardware(kSettingsFile, {changed, length});
}

const char* LevelName(CARD16 level) {
  constexpr const char* kNames[] = {"on", "standby", "suspend", "off"};
  return level < sizeof(kNames) / sizeof(kNames[0]) ? kNames[level] : nullptr;
}

}  // namespace

ZQSIM_HOOK Display* XOpenDisplay(const char* name) {
  const DisplayServer server = CurrentView() != nullptr ? Settings().server : DisplayServer::kReal;
  if (server == DisplayServer::kReal) return PASS_X11(XOpenDisplay, name);
  NoteCall("XOpenDisplay");
  return server == DisplayServer::kSimulated ? reinterpret_cast<Display*>(simulatedDisplay) : nullptr;
}

ZQSIM_HOOK int XCloseDisplay(Display* display) {
  if (!IsSimulated(display)) return PASS_X11(XCloseDisplay, display);
  NoteCall("XCloseDisplay");
  return 0;
}

ZQSIM_HOOK int XFlush(Display* display) {
  if (!IsSimulated(display)) return PASS_X11(XFlush, display);
  NoteCall("XFlush");
  return 1;
}

// The simulated server never ends.
ZQSIM_HOOK void XSetIOErrorExitHandler(Display* display, XIOErrorExitHandler handler, void* data) {
  if (IsSimulated(display)) return;
  const auto real = Real(&next_XSetIOErrorExitHandler, "libX11.so.6", &::XSetIOErrorExitHandler);
  if (real != nullptr) real(display, handler, data);
}

ZQSIM_HOOK Bool DPMSQueryExtension(Display* display, int* event, int* error) {
  if (!IsSimulated(display)) return PASS_XEXT(DPMSQueryExtension, display, event, error);
  NoteCall("DPMSQueryExtension");
  if (!Settings().extension) return False;
  *event = 0;
  *error = 0;
  return True;
}

ZQSIM_HOOK Bool DPMSCapable(Display* display) {
  if (!IsSimulated(display)) return PASS_XEXT(DPMSCapable, display);
  NoteCall("DPMSCapable");
  return Settings().capable ? True : False;
}

ZQSIM_HOOK Status DPMSEnable(Display* display) {
  if (!IsSimulated(display)) return PASS_XEXT(DPMSEnable, display);
  NoteCall("DPMSEnable");
  return Settings().enable ? 1 : 0;
}

ZQSIM_HOOK Bool DPMSGetTimeouts(Display* display, CARD16* standby, CARD16* suspend, CARD16* off) {
  if (!IsSimulated(display)) return PASS_XEXT(DPMSGetTimeouts, display, standby, suspend, off);
  NoteCall("DPMSGetTimeouts");
  const DisplaySettings settings = Settings();
  if (!settings.getTimeouts) return False;
  *standby = settings.timeouts[0];
  *suspend = settings.timeouts[1];
  *off = settings.timeouts[2];
  return True;
}

ZQSIM_HOOK Status DPMSSetTimeouts(Display* display, CARD16 standby, CARD16 suspend, CARD16 off) {
  if (!IsSimulated(display)) return PASS_XEXT(DPMSSetTimeouts, display, standby, suspend, off);
  char text[64];
  snprintf(text, sizeof(text), "DPMSSetTimeouts %u %u %u", unsigned{standby}, unsigned{suspend},
           unsigned{off});
  NoteCall(text);
  snprintf(text, sizeof(text), "%u,%u,%u", unsigned{standby}, unsigned{suspend}, unsigned{off});
  return Settings().setTimeouts && Store("timeouts", text) ? 1 : 0;
}

ZQSIM_HOOK Status DPMSForceLevel(Display* display, CARD16 level) {
  if (!IsSimulated(display)) return PASS_XEXT(DPMSForceLevel, display, level);
  const char* const name = LevelName(level);
  char text[64];
  snprintf(text, sizeof(text), "DPMSForceLevel %s", name != nullptr ? name : "?");
  NoteCall(text);
  return name != nullptr && Settings().forceLevel && Store("level", name) ? 1 : 0;
}
