// Any bytes as an interface's file of a simulated device, and what the kernel's files say of it.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "interface_state.h"
#include "kernel_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const InterfaceState state = ParseInterface("ra0", {reinterpret_cast<const char*>(data), size});
  if (state.count > kMostAddresses) abort();
  for (size_t i = 0; i < state.count; ++i) {
    if (strnlen(state.addresses[i].label, kInterfaceLabel) == kInterfaceLabel) abort();
  }
  char buffer[1024];
  KernelText text(buffer, sizeof(buffer));
  AddRouteTitle(&text);
  AddRoutes("ra0", state, &text);
  AddOperstate(state, &text);
  AddCarrier(state, &text);
  AddWirelessLink(state, 100, &text);
  if (text.View().size() > sizeof(buffer)) abort();
  return 0;
}
