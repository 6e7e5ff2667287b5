// The connectivity monitor's rule, row by row.
#include <gtest/gtest.h>

#include "ConnectivityStep.h"

namespace {

using Plan = ConnectivityPlan;

// The whole plan as one text: traces, method, what is next, state.
std::string Show(const Plan& plan) {
  static const char* const kNext[] = {"stop", "again", "second", "wait", "check"};
  return plan.trace + plan.listenerTrace + (plan.method != nullptr ? plan.method : "-") + " " +
         kNext[plan.next] + " " + std::to_string(plan.state);
}

std::string Step(int32_t state, uint32_t facts, int32_t interfaces = 0, int32_t waits = 0) {
  return Show(PlanConnectivity(state, facts, interfaces, waits));
}

TEST(ConnectivityStep, WiredGoesOnAtOnce) {
  for (const uint32_t more : {0U, 0U | kScriptRuns, 0U | kListens, 0U | kAssociated}) {
    EXPECT_EQ(Step(0, more), "- again 1");
  }
}

TEST(ConnectivityStep, AnAssociationIsToldToAListener) {
  EXPECT_EQ(Step(0, kWireless | kAssociated | kListens),
            "ZQUtil Sending Connectivity Listener Associated\nZQUtil sending onAssociation\nonAssociation "
            "second 1");
  EXPECT_EQ(Step(0, kWireless | kAssociated | kScriptRuns),
            "ZQUtil Sending Connectivity Listener Associated\n- second 1");
}

TEST(ConnectivityStep, AnAssociationFailsOnlyWhenTheScriptHasEnded) {
  EXPECT_EQ(Step(0, kWireless | kScriptRuns | kListens), "- second 0");
  EXPECT_EQ(Step(0, kWireless | kListens),
            "ZQUtil Sending Connectivity Listener Failed Association\nZQUtil sending onFailedAssociation\n"
            "onFailedAssociation stop 0");
  EXPECT_EQ(Step(0, kWireless), "ZQUtil Sending Connectivity Listener Failed Association\n- stop 0");
}

TEST(ConnectivityStep, DhcpBegins) {
  EXPECT_EQ(Step(1, kDhcp | kListens),
            "ZQUtil Sending Connectivity Listener Beginning DHCP\nZQUtil sending onBeginDHCP\n"
            "onBeginDHCP second 2");
  EXPECT_EQ(Step(1, kDhcp | kScriptRuns), "ZQUtil Sending Connectivity Listener Beginning DHCP\n- second 2");
}

TEST(ConnectivityStep, AStaticAddressIsCheckedWhenTheScriptHasEnded) {
  EXPECT_EQ(Step(1, kScriptRuns | kListens), "- second 1");
  EXPECT_EQ(Step(1, kListens), "ZQUtil sending onBeginConnectivityCheck\nonBeginConnectivityCheck check 3");
  EXPECT_EQ(Step(1, 0), "- check 3");
}

TEST(ConnectivityStep, AnAddressThatAppearsWhileTheScriptRunsIsTold) {
  EXPECT_EQ(Step(2, kScriptRuns | kListens), "- second 2");
  EXPECT_EQ(Step(2, kScriptRuns | kNewInterfaces | kListens), "- second 2");
  EXPECT_EQ(Step(2, kScriptRuns | kNewInterfaces | kAddress), "- second 2");
  EXPECT_EQ(Step(2, kScriptRuns | kNewInterfaces | kAddress | kListens, 3, 1),
            "ZQUtil num interfaces 3.  Sending onDoneDHCP.\nonDoneDHCP second 2");
}

TEST(ConnectivityStep, AScriptThatEndsWithoutAnAddressHasFailedWhoeverListens) {
  const std::string failed =
      "ZQUtil Script finished but we didn't get an IP Address\nonFailedAssociation stop 2";
  EXPECT_EQ(Step(2, kListens | kInterfaces | kWaitsLeft), failed);
  EXPECT_EQ(Step(2, 0), failed);
}

TEST(ConnectivityStep, WithAnAddressAndNobodyListeningTheCheckBeginsAtOnce) {
  EXPECT_EQ(Step(2, kAddress), "- check 3");
  EXPECT_EQ(Step(2, kAddress | kWaitsLeft), "- check 3");
}

TEST(ConnectivityStep, WithAnAddressTheInterfacesAreWaitedForAWhile) {
  EXPECT_EQ(Step(2, kAddress | kListens | kInterfaces),
            "ZQUtil Script sending onBeginConnectivityCheck\nonBeginConnectivityCheck check 3");
  EXPECT_EQ(
      Step(2, kAddress | kListens | kWaitsLeft, 0, 12),
      "ZQUtil Script finished.  Waiting a few seconds for interfaces to materialize, interfaces: 0 (12).\n"
      "- wait 2");
  EXPECT_EQ(Step(2, kAddress | kListens),
            "ZQUtil Script finished but only one interface,  Sending onFailedAssociation.\n"
            "onFailedAssociation stop 2");
}

TEST(ConnectivityStep, NothingHappensInOtherStates) {
  for (const int32_t state : {3, 4, -1, 1000}) {
    EXPECT_EQ(Step(state, 0xFFFFFFFFU), "- stop " + std::to_string(state));
  }
}

TEST(ConnectivityStep, EveryCombinationHasARow) {
  for (int32_t state = 0; state <= 2; ++state) {
    for (uint32_t facts = 0; facts < 2 * kWaitsLeft; ++facts) {
      const Plan plan = PlanConnectivity(state, facts, 0, 0);
      const bool stops = plan.next == Plan::kStop;
      const bool failed =
          plan.trace.find("ail") != std::string::npos || plan.trace.find("didn't") != std::string::npos;
      EXPECT_EQ(stops, failed) << state << " " << facts << ": the monitor stops on a failure alone";
    }
  }
}

}  // namespace
