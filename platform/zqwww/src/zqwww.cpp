#include "zqwww.h"

#include <atomic>

#include "libraries.h"

namespace {

// The calls of zqwww_init that wait for their zqwww_term. Connections hold the libraries on their own account,
// which a zqwww_term too many must not give away.
std::atomic<int> g_inits{0};

}  // namespace

int zqwww_init() {
  AddLibrariesUser();
  ++g_inits;
  return 1;
}

void zqwww_term() {
  int inits = g_inits.load();
  while (inits > 0 && !g_inits.compare_exchange_weak(inits, inits - 1)) {
  }
  if (inits > 0) ReleaseLibraries();
}
