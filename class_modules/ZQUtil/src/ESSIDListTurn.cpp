#include "ESSIDListTurn.h"

#include <atomic>

namespace {

std::atomic<bool> g_taken = false;

}  // namespace

ESSIDListTurn::ESSIDListTurn(Patience patience) : mine_(!g_taken.exchange(true)) {
  while (!mine_ && patience == Patience::kWaits) {
    g_taken.wait(true);
    mine_ = !g_taken.exchange(true);
  }
}

ESSIDListTurn::~ESSIDListTurn() {
  if (!mine_) return;
  g_taken = false;
  g_taken.notify_one();
}
