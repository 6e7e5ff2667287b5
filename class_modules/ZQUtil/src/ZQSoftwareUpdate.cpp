#include "ZQSoftwareUpdate.h"

#include "ZQUtil.h"

std::atomic<bool> updateAvailable = false;

void ZQUtil::CheckForAvailableUpdates() {
  // Without a transport to the update server none can be reached, and that is the answer that listeners get.
  PostToModule(kMsgUpdateServerNotReached, 0);
}

void ZQUtil::ReleaseSoftwareUpdateList() {}
