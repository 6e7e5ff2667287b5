#include "cfgmgr.h"

#include "zq_ini.h"

int32_t areUpdatesSuspended() {
  return zq_GetINIFileAffirmative("updates", "suspended", nullptr, "cfgmgr.ini") ? 1 : 0;
}
