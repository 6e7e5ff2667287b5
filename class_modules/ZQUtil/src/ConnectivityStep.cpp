#include "ConnectivityStep.h"

#include <initializer_list>

namespace {

using Plan = ConnectivityPlan;

enum Call { kNobody, kListener, kAnybody };

// The first row counts whose state is this one and whose facts, among those of `mask`, are `facts`.
struct Row {
  int32_t state;
  uint32_t mask;
  uint32_t facts;
  int32_t nextState;
  const char* trace;
  const char* listenerTrace;
  const char* method;
  Call call;
  Plan::Next next;
};

// In these texts each %d is the next of: the number of interfaces, the waits so far.
constexpr char kAssociatedText[] = "ZQUtil Sending Connectivity Listener Associated\n";
constexpr char kFailedText[] = "ZQUtil Sending Connectivity Listener Failed Association\n";
constexpr char kBeginDhcpText[] = "ZQUtil Sending Connectivity Listener Beginning DHCP\n";
constexpr char kDoneDhcpText[] = "ZQUtil num interfaces %d.  Sending onDoneDHCP.\n";
constexpr char kNoAddressText[] = "ZQUtil Script finished but we didn't get an IP Address\n";
constexpr char kScriptCheckText[] = "ZQUtil Script sending onBeginConnectivityCheck\n";
constexpr char kWaitText[] =
    "ZQUtil Script finished.  Waiting a few seconds for interfaces to materialize, interfaces: %d (%d).\n";
constexpr char kNoInterfacesText[] =
    "ZQUtil Script finished but only one interface,  Sending onFailedAssociation.\n";
constexpr char kOnAssociation[] = "onAssociation";
constexpr char kOnFailed[] = "onFailedAssociation";
constexpr char kOnBeginDhcp[] = "onBeginDHCP";
constexpr char kOnDoneDhcp[] = "onDoneDHCP";
constexpr char kOnBeginCheck[] = "onBeginConnectivityCheck";

constexpr Row kRows[] = {
    {0, kWireless, 0, 1, nullptr, nullptr, nullptr, kNobody, Plan::kAgain},
    {0, kAssociated, kAssociated, 1, kAssociatedText, "ZQUtil sending onAssociation\n", kOnAssociation,
     kListener, Plan::kSecond},
    {0, kScriptRuns, 0, 0, kFailedText, "ZQUtil sending onFailedAssociation\n", kOnFailed, kListener,
     Plan::kStop},
    {0, 0, 0, 0, nullptr, nullptr, nullptr, kNobody, Plan::kSecond},

    {1, kDhcp, kDhcp, 2, kBeginDhcpText, "ZQUtil sending onBeginDHCP\n", kOnBeginDhcp, kListener,
     Plan::kSecond},
    {1, kScriptRuns, kScriptRuns, 1, nullptr, nullptr, nullptr, kNobody, Plan::kSecond},
    {1, 0, 0, 3, nullptr, "ZQUtil sending onBeginConnectivityCheck\n", kOnBeginCheck, kListener,
     Plan::kCheck},

    {2, kScriptRuns | kNewInterfaces | kAddress, kScriptRuns | kNewInterfaces | kAddress, 2, nullptr,
     kDoneDhcpText, kOnDoneDhcp, kListener, Plan::kSecond},
    {2, kScriptRuns, kScriptRuns, 2, nullptr, nullptr, nullptr, kNobody, Plan::kSecond},
    {2, kAddress, 0, 2, kNoAddressText, nullptr, kOnFailed, kAnybody, Plan::kStop},
    {2, kListens, 0, 3, nullptr, nullptr, nullptr, kNobody, Plan::kCheck},
    {2, kInterfaces, kInterfaces, 3, kScriptCheckText, nullptr, kOnBeginCheck, kListener, Plan::kCheck},
    {2, kWaitsLeft, kWaitsLeft, 2, kWaitText, nullptr, nullptr, kNobody, Plan::kWaitSecond},
    {2, 0, 0, 2, kNoInterfacesText, nullptr, kOnFailed, kAnybody, Plan::kStop},
};

std::string WithNumbers(const char* text, std::initializer_list<int32_t> numbers) {
  std::string filled = text != nullptr ? text : "";
  for (const int32_t number : numbers) {
    const size_t place = filled.find("%d");
    if (place == std::string::npos) break;
    filled.replace(place, 2, std::to_string(number));
  }
  return filled;
}

}  // namespace

ConnectivityPlan PlanConnectivity(int32_t state, uint32_t facts, int32_t interfaces, int32_t waits) {
  for (const Row& row : kRows) {
    if (row.state != state || (facts & row.mask) != row.facts) continue;
    const bool listens = (facts & kListens) != 0;
    const bool called = row.call == kAnybody || (row.call == kListener && listens);
    return {WithNumbers(row.trace, {interfaces, waits}),
            listens ? WithNumbers(row.listenerTrace, {interfaces, waits}) : "", called ? row.method : nullptr,
            row.next, row.nextState};
  }
  return {"", "", nullptr, Plan::kStop, state};
}
