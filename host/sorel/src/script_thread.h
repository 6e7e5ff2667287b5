// Which thread the scripts, the loop and the finalizers run on.
#ifndef SOREL_SCRIPT_THREAD_H
#define SOREL_SCRIPT_THREAD_H

namespace sorel {

inline constinit thread_local bool t_onScriptThread = false;
inline bool OnScriptThread() {
  return t_onScriptThread;
}
// Called once, by the main thread.
inline void BecomeScriptThread() {
  t_onScriptThread = true;
}

}  // namespace sorel

#endif
