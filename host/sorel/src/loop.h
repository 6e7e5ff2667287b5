// The script thread's loop: timers, finalizers, input of the prompt, and when to look for unreachable
// objects.
#ifndef SOREL_LOOP_H
#define SOREL_LOOP_H

#include <functional>

#include "idle_collector.h"
#include "jsc.h"

namespace sorel {

class Loop {
 public:
  // Runs until nothing is left to wait for, the host is asked to end, or a timer's function throws: then what
  // it threw, else null.
  JSValueRef Run(JSContextRef context);
  // Keeps the loop alive; calls `ready` whenever the descriptor can be read, and `idle` before it waits.
  void WatchInput(int descriptor, std::function<void()> ready, std::function<void()> idle);

 private:
  // True while something can still happen.
  bool Alive() const;
  void CollectWhenIdle(JSContextRef context);
  void Wait();

  int input_ = -1;
  std::function<void()> ready_;
  std::function<void()> idle_;
  IdleCollector collector_;
};

}  // namespace sorel

#endif
