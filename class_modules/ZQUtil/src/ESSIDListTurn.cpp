#include "ESSIDListTurn.h"

#include <atomic>

namespace {

enum Holder { kNobody, kShort, kScanning };

std::atomic<Holder> g_holder = kNobody;

}  // namespace

ESSIDListTurn::ESSIDListTurn(Use use) {
  const Holder wanted = use == Use::kScans ? kScanning : kShort;
  for (;;) {
    Holder holder = kNobody;
    mine_ = g_holder.compare_exchange_strong(holder, wanted);
    if (mine_ || (use == Use::kReads && holder == kScanning)) return;
    g_holder.wait(holder);
  }
}

ESSIDListTurn::~ESSIDListTurn() {
  if (!mine_) return;
  g_holder = kNobody;
  g_holder.notify_all();
}

void ESSIDListTurn::TurnsToScan() {
  g_holder = kScanning;
  g_holder.notify_all();
}
