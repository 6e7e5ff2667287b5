// Keeps a write to a broken connection from ending the process, on threads that are not the library's own.
#ifndef ZQWWW_SIGPIPE_GUARD_H
#define ZQWWW_SIGPIPE_GUARD_H

#include <pthread.h>

#include <csignal>
#include <ctime>

class SigpipeGuard {
 public:
  SigpipeGuard() {
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    sigset_t pipe = Pipe();
    pthread_sigmask(SIG_BLOCK, &pipe, &before_);
  }
  SigpipeGuard(const SigpipeGuard&) = delete;
  SigpipeGuard& operator=(const SigpipeGuard&) = delete;
  ~SigpipeGuard() {
    const timespec now{0, 0};
    const sigset_t pipe = Pipe();
    // What was raised meanwhile is ours, and must not be delivered when the mask goes.
    if (!wasPending_) sigtimedwait(&pipe, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  static sigset_t Pipe() {
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    return pipe;
  }

  sigset_t before_{};
  bool wasPending_ = false;
};

#endif
