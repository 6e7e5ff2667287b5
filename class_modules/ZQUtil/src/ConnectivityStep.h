// The rule of the connectivity monitor: what one step does, from what the device says at that moment.
//
// A network restart begins the monitor in state 0, and a step follows each second for as long as a row says so.
//
//   state 0, waiting for association
//     wired                                        goes on as state 1 at once
//     associated                                   onAssociation             -> 1, a second
//     not associated, the script has ended         onFailedAssociation       -> 0, stops
//     not associated, the script runs                                        -> 0, a second
//   state 1, associated or wired
//     DHCP                                         onBeginDHCP               -> 2, a second
//     static, the script runs                                                -> 1, a second
//     static, the script has ended                 onBeginConnectivityCheck  -> 3, checks
//   state 2, waiting for an address
//     the script runs, new interfaces, an address  onDoneDHCP                -> 2, a second
//     the script runs                                                        -> 2, a second
//     the script has ended, no address             onFailedAssociation       -> 2, stops
//     the script has ended, nobody listens                                   -> 3, checks
//     the script has ended, interfaces             onBeginConnectivityCheck  -> 3, checks
//     the script has ended, none yet               (at most 13 times)        -> 2, a second
//     the script has ended, none after that        onFailedAssociation       -> 2, stops
//   state 3, the Internet check was started        nothing, until a network restart
#ifndef ZQUTIL_CONNECTIVITY_STEP_H
#define ZQUTIL_CONNECTIVITY_STEP_H

#include <cstdint>
#include <string>

enum ConnectivityState : int32_t {
  kWaitingForAssociation = 0,
  kAssociatedOrWired = 1,
  kWaitingForAddress = 2,
  kCheckStarted = 3
};

// What the device says, as bits. A state asks only for those that its rows name.
enum ConnectivityFact : uint32_t {
  kWireless = 1U << 0,
  kAssociated = 1U << 1,
  kScriptRuns = 1U << 2,
  kDhcp = 1U << 3,
  kListens = 1U << 4,  // a listener is registered
  kNewInterfaces = 1U << 5,
  kAddress = 1U << 6,
  kInterfaces = 1U << 7,  // at least one
  kWaitsLeft = 1U << 8
};

// One-second waits for interfaces after the script's end: 13, counted from 0.
constexpr int32_t kLastInterfaceWait = 12;

struct ConnectivityPlan {
  // Done in this order.
  std::string trace;          // "" for none; with its line break
  std::string listenerTrace;  // the same; only with a listener
  const char* method;  // null for none; not only with a listener: a failure at the end is told to whatever
                       // the field holds
  enum Next { kStop, kAgain, kSecond, kWaitSecond, kCheck } next;
  int32_t state;  // the next one
};

// `interfaces` and `waits` are numbers for the traces. A state beyond 2 stays and stops.
ConnectivityPlan PlanConnectivity(int32_t state, uint32_t facts, int32_t interfaces, int32_t waits);

#endif
