// What the kernel and the system's files say of the network now.
#include <gtest/gtest.h>

#include <filesystem>

#include "OwnedText.h"
#include "ZQNetwork.h"
#include "module_fixture.h"
#include "zq_timer.h"

namespace {

namespace fs = std::filesystem;

constexpr char kRouteHeader[] =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

class NetworkProbesTest : public ModuleTest {
 protected:
  NetworkProbesTest() {
    New();
    Settle();
    ForgetTraces();
  }

  ZQNetwork& Network() { return *ZQUtil::m_pInstance->network; }
  std::string Of(char* (ZQNetwork::*probe)()) { return OwnedText((Network().*probe)()).get(); }

  static void SetFile(const char* path, const std::string& text) {
    fs::create_directories(fs::path(OnThisMachine(path)).parent_path());
    WriteFile(OnThisMachine(path), text);
  }
  std::string GatewayOf(const std::string& routes) {
    SetFile("/proc/net/route", routes);
    return Of(&ZQNetwork::getGateway);
  }
  // The three name servers, "[a] [b] [c]".
  std::string ServersOf(const std::string& resolver) {
    SetFile("/etc/resolv.conf", resolver);
    char* texts[3] = {};
    Network().getDNSInfo(&texts[0], &texts[1], &texts[2]);
    std::string all;
    for (char* text : texts) all += (all.empty() ? "[" : " [") + std::string(OwnedText(text).get()) + "]";
    return all;
  }
};

TEST_F(NetworkProbesTest, TheLastDefaultRouteNamesTheGateway) {
  EXPECT_EQ(
      GatewayOf(std::string(kRouteHeader) + "eth0\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"),
      "192.168.1.1");
  EXPECT_EQ(
      GatewayOf(std::string(kRouteHeader) + "ra0\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"
                                            "ra0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
                                            "eth0\t00000000\tFE00000A\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"),
      "10.0.0.254");
}

TEST_F(NetworkProbesTest, WithoutADefaultRouteTheGatewayIsZero) {
  EXPECT_EQ(GatewayOf(""), "0.0.0.0");
  EXPECT_EQ(GatewayOf(kRouteHeader), "0.0.0.0");
  EXPECT_EQ(GatewayOf("eth0\t00000000\tnonsense\t0003\n"), "0.0.0.0");
  fs::remove(OnThisMachine("/proc/net/route"));
  ForgetTraces();
  EXPECT_EQ(Of(&ZQNetwork::getGateway), "0.0.0.0");
  EXPECT_EQ(Traces(), "Opening /proc/net/route\n");
}

TEST_F(NetworkProbesTest, TracesTheRoutesItReads) {
  GatewayOf("Iface\nra0\t00000000\t0101A8C0\t0003\n");
  EXPECT_EQ(Traces(),
            "Opening /proc/net/route\nProcessing Iface\n\nProcessing ra0\t00000000\t0101A8C0\t0003\n\n"
            "Gateway starts 0101A8C0\t0003\n\nGateway is 192.168.1.1\n");
}

TEST_F(NetworkProbesTest, ALastRouteWithoutItsLineBreakCounts) {
  EXPECT_EQ(GatewayOf("ra0\t00000000\t0101A8C0\t0003"), "192.168.1.1");
  EXPECT_EQ(GatewayOf("ra0\t00000000\t0101A8C0"), "0.0.0.0") << "eight characters are not more than eight";
}

TEST_F(NetworkProbesTest, AHugeRouteFileIsReadToItsEnd) {
  std::string routes = kRouteHeader;
  for (int i = 0; i < 20000; ++i) routes += "eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n";
  routes += "ra0\t00000000\t0101A8C0\t0003\n";
  EXPECT_EQ(GatewayOf(routes), "192.168.1.1");
  // The rest of a line beyond 255 characters is a line of its own.
  EXPECT_EQ(GatewayOf(std::string(255, 'x') + "\t00000000\t0101A8C0\t0003\n"), "192.168.1.1");
  EXPECT_EQ(GatewayOf(std::string(254, 'x') + "\t00000000\t0101A8C0\t0003\n"), "0.0.0.0");
  EXPECT_EQ(GatewayOf(std::string(1000000, '\t')), "0.0.0.0");
  EXPECT_EQ(GatewayOf(std::string(1000000, '\0')), "0.0.0.0");
}

TEST_F(NetworkProbesTest, NameServersComeFromTheResolversFile) {
  EXPECT_EQ(
      ServersOf("# made by hand\nsearch home\nnameserver 1.1.1.1\nnameserver 2.2.2.2\nnameserver 3.3.3.3\n"
                "nameserver 4.4.4.4\n"),
      "[1.1.1.1] [2.2.2.2] [4.4.4.4]");
  EXPECT_EQ(Of(&ZQNetwork::getPrimaryDNS), "1.1.1.1");
  EXPECT_EQ(Of(&ZQNetwork::getSecondaryDNS), "2.2.2.2");
  EXPECT_EQ(ServersOf("  NameServer\t8.8.8.8 \r\n"), "[8.8.8.8] [] []");
  EXPECT_EQ(Of(&ZQNetwork::getSecondaryDNS), "");
  EXPECT_EQ(ServersOf("nameserver 2001:db8::1\nnameserver 9.9.9.9"), "[2001:db8::1] [9.9.9.9] []");
  EXPECT_EQ(Traces(), "");
}

TEST_F(NetworkProbesTest, WithoutTheResolversFileThereAreNoNameServers) {
  EXPECT_EQ(ServersOf(""), "[] [] []");
  EXPECT_EQ(ServersOf("\n\n\n"), "[] [] []");
  fs::remove(OnThisMachine("/etc/resolv.conf"));
  fs::create_directory(OnThisMachine("/etc/resolv.conf"));
  EXPECT_EQ(Of(&ZQNetwork::getPrimaryDNS), "");
  EXPECT_EQ(Of(&ZQNetwork::getSecondaryDNS), "");
  fs::remove(OnThisMachine("/etc/resolv.conf"));
}

TEST_F(NetworkProbesTest, AHugeResolversFileIsReadToItsEnd) {
  std::string resolver;
  for (int i = 0; i < 20000; ++i) resolver += "nameserver 10.0.0.1\n";
  EXPECT_EQ(ServersOf(resolver + "nameserver 10.0.0.2"), "[10.0.0.1] [10.0.0.1] [10.0.0.2]");
  EXPECT_EQ(ServersOf("nameserver " + std::string(988, 's') + "nameserver t\n"),
            "[" + std::string(988, 's') + "] [t] []")
      << "a line is 999 characters long at most";
  EXPECT_EQ(ServersOf(std::string(1000000, '\0')), "[] [] []");
}

class LinkTest : public NetworkProbesTest {
 protected:
  static constexpr char kLink[] = "/sys/devices/virtual/net/ra0/wireless/link";
  static constexpr char kVardo2Link[] = "/sys/class/net/ra0/wireless/link";
  static constexpr char kState[] = "/sys/class/net/ra0/operstate";

  LinkTest() {
    for (const char* file : {kLink, kVardo2Link}) fs::remove(OnThisMachine(file));
  }
  ~LinkTest() override { SetFile(kState, "up\n"); }
};

TEST_F(LinkTest, TheStrengthOfAWiredDeviceIsZeroAndNoFileIsLookedAt) {
  SetFile(kLink, "50\n");
  EXPECT_EQ(Network().SignalStrength(), 0);
  EXPECT_EQ(Traces().find("Opening"), std::string::npos);
}

TEST_F(LinkTest, TheStrengthIsTheLinkFilesLastLine) {
  StoreKey("net.wifi", "YES");
  ForgetTraces();
  SetFile(kLink, "10\n20\n37\n");
  EXPECT_EQ(Network().SignalStrength(), 37);
  EXPECT_EQ(Traces(),
            "Opening /sys/devices/virtual/net/ra0/wireless/link\nFile opened\nSignal strength is 37\n");
  SetFile(kLink, "10\n-42");
  EXPECT_EQ(Network().SignalStrength(), -42);
  SetFile(kLink, "10\nnone\n");
  EXPECT_EQ(Network().SignalStrength(), 0);
  SetFile(kLink, "");
  EXPECT_EQ(Network().SignalStrength(), 0);
  SetFile(kLink, std::string(255, '0') + "7\n");
  EXPECT_EQ(Network().SignalStrength(), 7) << "the rest of a long line is the last line";
}

TEST_F(LinkTest, WithoutALinkFileTheStrengthIsZero) {
  StoreKey("net.wifi", "YES");
  ForgetTraces();
  EXPECT_EQ(Network().SignalStrength(), 0);
  EXPECT_EQ(Traces(), "Opening /sys/devices/virtual/net/ra0/wireless/link\n");
}

TEST_F(LinkTest, AVardo2HasItsLinkFileElsewhere) {
  StoreKey("net.wifi", "YES");
  Network().hardwareType = 2;
  SetFile(kLink, "10\n");
  SetFile(kVardo2Link, "55\n");
  ForgetTraces();
  EXPECT_EQ(Network().SignalStrength(), 55);
  EXPECT_EQ(Traces(), "Opening /sys/class/net/ra0/wireless/link\nFile opened\nSignal strength is 55\n");
}

TEST_F(LinkTest, AVardo2WhoseLinkIsNotUpIsNotConnected) {
  Network().hardwareType = 2;
  for (const char* state : {"down\n", "dormant\n", " up\n", "UP\n", "u", "\n"}) {
    SetFile(kState, state);
    ForgetTraces();
    EXPECT_FALSE(Network().ConnectedStatus()) << state;
    EXPECT_EQ(Traces(),
              "Checking connected status on a Vardo2\nOpened /sys/class/net/ra0/operstate\nContents " +
                  std::string(state) + "\n");
  }
  SetFile(kState, "");
  ForgetTraces();
  EXPECT_FALSE(Network().ConnectedStatus());
  EXPECT_EQ(Traces(), "Checking connected status on a Vardo2\nOpened /sys/class/net/ra0/operstate\n");
  fs::remove(OnThisMachine(kState));
  ForgetTraces();
  EXPECT_FALSE(Network().ConnectedStatus());
  EXPECT_EQ(Traces(), "Checking connected status on a Vardo2\n");
}

TEST_F(NetworkProbesTest, AskingForTheAddressDefersAnUpdateCheckThatIsNear) {
  const uint32_t queue = ZQUtil::m_pInstance->Handle();
  const auto remainingAfterAsking = [&](uint32_t remaining) {
    zq_TimerSet(queue, remaining, kTimerSoftwareUpdate, 0, 0, 0, "test", false);
    Of(&ZQNetwork::getCurrentIP);
    return zq_TimerTimeRemaining(queue, kTimerSoftwareUpdate, 0, 0);
  };
  EXPECT_EQ(remainingAfterAsking(60001), 60001U);
  EXPECT_EQ(remainingAfterAsking(60000), 300000U);
  EXPECT_EQ(remainingAfterAsking(1), 300000U);
  zq_TimerKill(queue, kTimerSoftwareUpdate, 0, 0);
  Of(&ZQNetwork::getCurrentIP);
  EXPECT_EQ(zq_TimerTimeRemaining(queue, kTimerSoftwareUpdate, 0, 0), ZQ_TIMER_NOT_ARMED) << "none is made";
  EXPECT_EQ(remainingAfterAsking(100), 300000U);
  Of(&ZQNetwork::getCurrentNetmask);
  EXPECT_EQ(zq_TimerTimeRemaining(queue, kTimerSoftwareUpdate, 0, 0), 300000U);
}

}  // namespace
