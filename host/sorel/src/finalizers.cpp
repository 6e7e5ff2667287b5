#include "finalizers.h"

#include "runtime.h"
#include "scope.h"

namespace sorel {
namespace {

int Finalize(const std::vector<Finalization>& due) {
  Runtime& runtime = Runtime::Get();
  for (const auto& [handle, finalizer] : due) {
    const Scope scope(runtime.Context(), {});
    if (finalizer != nullptr) finalizer(PointerOf(handle));
    runtime.Handles().Release(handle);
  }
  return static_cast<int>(due.size());
}

std::vector<Finalization> Take(bool all) {
  const EngineLock lock;
  HandleTable& handles = Runtime::Get().Handles();
  return all ? handles.TakeAll() : handles.TakeCollected();
}

}  // namespace

int FinalizeCollected() {
  return Finalize(Take(false));
}
void FinalizeAll() {
  Finalize(Take(true));
}

}  // namespace sorel
