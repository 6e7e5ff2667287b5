// Calls that change the machine as a whole: a device has its own clock settings and reboots by itself, and this machine's
// stay as they are, whoever runs the device.
#include <sys/reboot.h>
#include <sys/time.h>
#include <sys/timex.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "next.h"
#include "world.h"

ZQSIM_NEXT(clock_settime)
ZQSIM_NEXT(settimeofday)
ZQSIM_NEXT(adjtime)
ZQSIM_NEXT(adjtimex)
ZQSIM_NEXT(clock_adjtime)
ZQSIM_NEXT(reboot)
ZQSIM_NEXT(sethostname)

namespace {

// Makes the call where there is no device.
template <typename Next, typename... Arguments>
int Refuse(Next next, Arguments... arguments) {
  if (CurrentView() == nullptr) return next(arguments...);
  errno = EOPNOTSUPP;
  return -1;
}

}  // namespace

ZQSIM_HOOK int clock_settime(clockid_t clock, const timespec* time) noexcept {
  return Refuse(NEXT(clock_settime), clock, time);
}

ZQSIM_HOOK int settimeofday(const timeval* time, const struct timezone* zone) noexcept {
  return Refuse(NEXT(settimeofday), time, zone);
}

// To look at the clock's running is no change.
ZQSIM_HOOK int adjtime(const timeval* delta, timeval* old) noexcept {
  return delta == nullptr ? NEXT(adjtime)(delta, old) : Refuse(NEXT(adjtime), delta, old);
}

ZQSIM_HOOK int adjtimex(timex* settings) noexcept {
  return settings->modes == 0 ? NEXT(adjtimex)(settings) : Refuse(NEXT(adjtimex), settings);
}

ZQSIM_HOOK int clock_adjtime(clockid_t clock, timex* settings) noexcept {
  return settings->modes == 0 ? NEXT(clock_adjtime)(clock, settings)
                              : Refuse(NEXT(clock_adjtime), clock, settings);
}

ZQSIM_HOOK int reboot(int how) noexcept {
  return Refuse(NEXT(reboot), how);
}

ZQSIM_HOOK int sethostname(const char* name, size_t length) noexcept {
  return Refuse(NEXT(sethostname), name, length);
}
