// What the device says about its network, as a test says it: stands in place of the network class's answers. Programs
// that use it link their calls to it (network_facts.cpp says which).
#ifndef ZQUTIL_TESTS_NETWORK_FACTS_H
#define ZQUTIL_TESTS_NETWORK_FACTS_H

#include <atomic>
#include <string>

// Changed while the queue is idle, read on its thread.
struct NetworkFacts {
  bool wireless = false;
  bool associated = false;
  bool dhcp = false;
  bool addressIsNull = false;
  std::string address;
  int interfaces = 0;
};

extern NetworkFacts networkFacts;

// Called in place of a check for updates.
extern void (*onCheckForUpdates)();

#endif
