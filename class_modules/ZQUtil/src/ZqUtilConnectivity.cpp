// The connectivity monitor: asks the device what the rule in ConnectivityStep.h wants to know, and does what it says.
#include "ConnectivityStep.h"
#include "ZQNetwork.h"
#include "ZQNetworkRestart.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "listeners.h"
#include "script_values.h"
#include "zq_memory.h"
#include "zq_socket.h"
#include "zq_timer.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZqUtilConnectivity";
constexpr char kListenerProperty[] = "ConnectivityListener";
constexpr uint32_t kStepMs = 1000;
constexpr uint32_t kCheckMs = 200;

struct Reading {
  uint32_t facts;
  int32_t interfaces;
};

uint32_t If(bool holds, ConnectivityFact fact) {
  return holds ? fact : 0U;
}

void ArmStep() {
  zq_TimerSet(ZQUtilMsgQHandle, kStepMs, kTimerNetworkStatus, 0, 0, 0, "Network Status Check Timer", false);
}

bool StepIsArmed() {
  return zq_TimerTimeRemaining(ZQUtilMsgQHandle, kTimerNetworkStatus, 0, 0) != ZQ_TIMER_NOT_ARMED;
}

void ArmCheck() {
  zq_TimerSet(ZQUtilMsgQHandle, kCheckMs, kTimerSoftwareUpdate, 0, 0, 0, "Check Connectivity Timer", false);
}

uint32_t ReadAssociation(ZQUtil& util) {
  util.newInterfaces = false;
  const bool wireless = util.network->isWireless();
  ZQUTIL_TRACE("ZQUtil Checking Wireless %d\n", wireless ? 1 : 0);
  if (!wireless) return 0;
  // The script first: one that ends in between has associated by then, and is not taken for one that failed.
  const bool runs = networkScriptRunning;
  return kWireless | If(util.network->ConnectedStatus(), kAssociated) | If(runs, kScriptRuns);
}

uint32_t ReadLink(ZQUtil& util) {
  if (util.network->isDHCPEnabled()) return kDhcp;
  return If(networkScriptRunning, kScriptRuns);
}

// The script still runs. The address is kept for good.
Reading ReadNewAddress(ZQUtil& util) {
  if (!util.newInterfaces) return {kScriptRuns, 0};
  const int32_t interfaces = zq_SocketGetInterfaceCount();
  ZQUTIL_TRACE("ZQUtil Sending Connectivity Listener Finished DHCP if num interfaces %d>%d\n", interfaces, 0);
  util.newInterfaces = false;
  const char* const address = util.network->getCurrentIP();
  const bool given = address != nullptr && *address != '\0';
  // As at the script's end: an empty text is traced as the address that came, and counts for none.
  if (address != nullptr) {
    ZQUTIL_TRACE("ZQUtil IP Address is %s\n", address);
  } else {
    ZQUTIL_TRACE("ZQUtil did not get an IP Address\n");
  }
  return {kScriptRuns | kNewInterfaces | If(given, kAddress), interfaces};
}

Reading ReadResult(ZQUtil& util) {
  const int32_t interfaces = zq_SocketGetInterfaceCount();
  ZQUTIL_TRACE("ZQUtil Script is finished. Interfaces %d, waits %d\n", interfaces,
               util.interfaceWaits.load());
  char* const address = util.network->getCurrentIP();
  const bool given = address != nullptr && *address != '\0';
  if (address != nullptr) ZQUTIL_TRACE("ZQUtil Script got an IP Address %s\n", address);
  zq__free(address, kSourceTag, __LINE__);
  return {If(given, kAddress) | If(interfaces != 0, kInterfaces) |
              If(util.interfaceWaits <= kLastInterfaceWait, kWaitsLeft),
          interfaces};
}

Reading Read(ZQUtil& util, int32_t state) {
  switch (state) {
    case kWaitingForAssociation:
      return {ReadAssociation(util), 0};
    case kAssociatedOrWired:
      return {ReadLink(util), 0};
    case kWaitingForAddress:
      return networkScriptRunning ? ReadNewAddress(util) : ReadResult(util);
    default:
      return {0, 0};
  }
}

// False when the listener has restarted the network, as one does who hears that it failed: then the monitor begins afresh,
// and the end of this step is none of its business.
bool Tell(void* listener, const char* method) {
  if (method == nullptr) return true;
  const bool armed = StepIsArmed();
  CallListener(listener, method);
  return armed || !StepIsArmed();
}

// One row's work. True when the next state is to be looked at at once.
bool Step(ZQUtil& util) {
  const int32_t state = util.network->connectionState;
  const Reading reading = Read(util, state);
  void* const listener = util.connectivityListener;
  const ConnectivityPlan plan = PlanConnectivity(state, reading.facts | If(listener != nullptr, kListens),
                                                 reading.interfaces, util.interfaceWaits);
  if (!plan.trace.empty()) ZQUTIL_TRACE("%s", plan.trace.c_str());
  if (!plan.listenerTrace.empty()) ZQUTIL_TRACE("%s", plan.listenerTrace.c_str());
  if (!Tell(listener, plan.method)) return false;
  // A restart from another thread sets the state too, and what it sets stays.
  int32_t before = state;
  if (!util.network->connectionState.compare_exchange_strong(before, plan.state)) return false;
  if (plan.next == ConnectivityPlan::kWaitSecond) ++util.interfaceWaits;
  if (plan.next == ConnectivityPlan::kCheck) {
    util.connectivityReported = false;
    ArmCheck();
  }
  if (plan.next == ConnectivityPlan::kSecond || plan.next == ConnectivityPlan::kWaitSecond) ArmStep();
  return plan.next == ConnectivityPlan::kAgain;
}

}  // namespace

void ZQUtil::HandleNetworkCheckTimer() {
  if (network == nullptr) return;
  while (Step(*this)) {
  }
}

int32_t ZQUtil::RegisterConnectivityListener(void* /*self*/, uint32_t argc, zq_Value* argv,
                                             zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil Registering Connectivity Listener\n");
  return ChangeListener(argc, argv, kListenerProperty, connectivityListener) == ListenerChange::kRefused ? 0
                                                                                                         : 1;
}

int32_t ZQUtil::CheckConnectivity(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  if (connectivityListener == nullptr) return 1;
  connectivityReported = false;
  // Or the check would be held back.
  updateAvailable = false;
  ZQUTIL_TRACE("ZQUtil Setting timer to check for Internet connectivity\n");
  ArmCheck();
  return 1;
}
