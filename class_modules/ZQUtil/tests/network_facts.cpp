#include "network_facts.h"

#include <cstdint>

#include "zq_memory.h"
#include "zq_socket.h"

NetworkFacts networkFacts;
void (*onCheckForUpdates)() = nullptr;

extern "C" {

// The linker's --wrap gives these in place of the members of that name.
bool __wrap__ZN9ZQNetwork10isWirelessEv(void*) {
  return networkFacts.wireless;
}
bool __wrap__ZN9ZQNetwork13isDHCPEnabledEv(void*) {
  return networkFacts.dhcp;
}
bool __wrap__ZN9ZQNetwork15ConnectedStatusEv(void*) {
  return networkFacts.associated;
}
char* __wrap__ZN9ZQNetwork12getCurrentIPEv(void*) {
  return networkFacts.addressIsNull ? nullptr : zq__newString(networkFacts.address.c_str(), "test", __LINE__);
}
int __wrap_zq_SocketGetInterfaceCount() {
  return networkFacts.interfaces;
}
void __wrap__ZN6ZQUtil24CheckForAvailableUpdatesEv(void*) {
  onCheckForUpdates();
}

}  // extern "C"
