#include "SingletonHold.h"

#include <atomic>
#include <cstdint>

namespace {

std::atomic<ZQUtil*> g_living = nullptr;
std::atomic<uint32_t> g_holds = 0;

void GiveBack() {
  if (--g_holds == 0) g_holds.notify_all();
}

}  // namespace

// Counted first and looked at then: the singleton's end sees the count, or its begin is seen.
SingletonHold::SingletonHold(void* singleton) : singleton_(nullptr) {
  ++g_holds;
  ZQUtil* const living = g_living;
  if (singleton != nullptr && living == singleton) {
    singleton_ = living;
  } else {
    GiveBack();
  }
}

SingletonHold::~SingletonHold() {
  if (singleton_ != nullptr) GiveBack();
}

void BeginSingletonHolds(ZQUtil* singleton) {
  g_living = singleton;
}

void EndSingletonHolds() {
  g_living = nullptr;
  while (const uint32_t holds = g_holds) g_holds.wait(holds);
}
