// Part of the host in builds with the thread sanitizer only. That holds back most signals until the thread calls the C
// library again, and the engine waits for the thread that it stops by one: both for ever when the thread computes.
// Signals that report faults are not held back.
#include <csignal>

extern "C" bool JSConfigureSignalForGC(int signal);

namespace {

__attribute__((constructor)) void UseSignalThatIsNotHeldBack() {
  JSConfigureSignalForGC(SIGSYS);
}

}  // namespace
