// Whose turn it is: one thread runs script code at a time, from its entry to the end of what it entered for, the
// script's jobs (promise reactions) included. So a script's author may rely on it that nothing comes between two lines
// of a function, a listener's as well, unless one of them calls a module's method: natives of modules run outside the
// turn, as they may wait for a thread that calls a listener. The host's own functions (print, setTimeout, ...) keep it.
//
// The turn is always taken before the engine's lock, and never waited for by a thread that has that lock.
#ifndef SOREL_SCRIPT_TURN_H
#define SOREL_SCRIPT_TURN_H

#include "turn_lock.h"

namespace sorel {

inline constinit TurnLock g_turn;
inline constinit thread_local bool t_hasTurn = false;

// The thread's turn as long as this lives; around everything that runs script code. Within another one it is nothing.
class ScriptTurn {
 public:
  ScriptTurn() : entered_(!t_hasTurn && g_turn.Enter()) {
    if (entered_) t_hasTurn = true;
  }
  ScriptTurn(const ScriptTurn&) = delete;
  ScriptTurn& operator=(const ScriptTurn&) = delete;
  ~ScriptTurn() {
    if (!entered_) return;
    t_hasTurn = false;
    g_turn.Leave();
  }
  // False when the host was asked to end before the turn came.
  explicit operator bool() const { return t_hasTurn; }

 private:
  const bool entered_;
};

// Others' turn as long as this lives; around a module's code that a script calls.
class TurnPause {
 public:
  TurnPause() : paused_(t_hasTurn ? g_turn.Pause() : 0) { t_hasTurn = false; }
  TurnPause(const TurnPause&) = delete;
  TurnPause& operator=(const TurnPause&) = delete;
  ~TurnPause() {
    if (paused_ == 0) return;
    g_turn.Resume(paused_);
    t_hasTurn = true;
  }

 private:
  const uint32_t paused_;
};

}  // namespace sorel

#endif
