// The connectivity monitor.
#include "ZQUtil.h"

void ZQUtil::HandleNetworkCheckTimer() {
  // Nothing restarts the network yet, so the timer that steps the monitor is never armed.
}
