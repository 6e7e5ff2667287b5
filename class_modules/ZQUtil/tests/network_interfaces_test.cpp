// The network's state as the device's interfaces have it, asked of the kernel.
#include <gtest/gtest.h>

#include <filesystem>

#include "OwnedText.h"
#include "ZQNetwork.h"
#include "module_fixture.h"

namespace {

namespace fs = std::filesystem;

constexpr char kWired[] = "/hw/eth0.ini";
constexpr char kRadio[] = "/hw/ra0/link.ini";

class NetworkInterfacesTest : public ModuleTest {
 protected:
  NetworkInterfacesTest() : wired_(ReadFile(OnThisMachine(kWired))), radio_(ReadFile(OnThisMachine(kRadio))) {
    New();
    Settle();
    ForgetTraces();
  }
  ~NetworkInterfacesTest() override {
    Set(kWired, wired_);
    Set(kRadio, radio_);
  }

  static void Set(const char* file, const std::string& text) { WriteFile(OnThisMachine(file), text); }
  static void Remove(const char* file) { fs::remove(OnThisMachine(file)); }
  static void GoWireless() { StoreKey("net.wifi", "yes"); }

  ZQNetwork& Network() { return *ZQUtil::m_pInstance->network; }
  std::string Of(char* (ZQNetwork::*probe)()) {
    ForgetTraces();
    return OwnedText((Network().*probe)()).get();
  }
  std::string Ip() { return Of(&ZQNetwork::getCurrentIP); }
  std::string Netmask() { return Of(&ZQNetwork::getCurrentNetmask); }
  bool Connected() {
    ForgetTraces();
    return Network().ConnectedStatus();
  }

 private:
  const std::string wired_;
  const std::string radio_;
};

constexpr char kUp[] = "[link]\nup = yes\n[address]\nip = 10.0.0.7\nnetmask = 255.255.0.0\n";

TEST_F(NetworkInterfacesTest, AddressAndMaskAreTheCurrentInterfaces) {
  Set(kWired, kUp);
  Set(kRadio, "[link]\nup = yes\n[address]\nip = 10.1.0.7\nnetmask = 255.0.0.0\n");
  EXPECT_EQ(Ip(), "10.0.0.7");
  EXPECT_EQ(Netmask(), "255.255.0.0");
  GoWireless();
  EXPECT_EQ(Ip(), "10.1.0.7");
  EXPECT_EQ(Netmask(), "255.0.0.0");
}

TEST_F(NetworkInterfacesTest, AnInterfaceThatIsDownWithoutAddressOrGoneHasNone) {
  for (const char* state : {"[link]\nup = no\n[address]\nip = 10.0.0.7\n", "[link]\nup = yes\n"}) {
    Set(kWired, state);
    EXPECT_EQ(Ip(), "") << state;
    EXPECT_EQ(Netmask(), "") << state;
  }
  Remove(kWired);
  EXPECT_EQ(Ip(), "");
  EXPECT_EQ(Netmask(), "");
}

TEST_F(NetworkInterfacesTest, OfItsAliasesTheLastOneCounts) {
  Set(kWired,
      std::string(kUp) + "alias = eth0:1 10.0.1.1 255.255.255.0\nalias = eth0:2 10.0.1.2 255.255.255.128\n");
  EXPECT_EQ(Ip(), "10.0.1.2");
  EXPECT_EQ(Netmask(), "255.255.255.128");
  GoWireless();
  Set(kRadio, std::string(kUp) + "alias = ra0:1 10.0.2.1 255.255.255.0\n");
  EXPECT_EQ(Ip(), "10.0.0.7") << "the radio's aliases are not the radio";
}

TEST_F(NetworkInterfacesTest, TheListIsReadToItsEndWhateverItsLength) {
  Remove(kRadio);
  for (const int entries : {9, 10, 11, 19, 20, 21, 40}) {
    // The loopback and the address itself are entries, too.
    const int aliases = entries - 2;
    std::string state = kUp;
    for (int i = 1; i <= aliases; ++i)
      state += "alias = eth0:" + std::to_string(i) + " 10.0.1." + std::to_string(i) + "\n";
    Set(kWired, state);
    EXPECT_EQ(Ip(), "10.0.1." + std::to_string(aliases)) << entries;
  }
}

TEST_F(NetworkInterfacesTest, AKernelThatRefusesGivesNone) {
  const auto refusing = [&](const char* request) {
    Set(kWired, std::string(kUp) + "[requests]\n" + request + " = EIO\n");
    return "ip=" + Ip() + " mask=" + Netmask();
  };
  EXPECT_EQ(refusing("list"), "ip= mask=");
  EXPECT_EQ(refusing("flags"), "ip= mask=");
  EXPECT_EQ(refusing("netmask"), "ip=10.0.0.7 mask=");
  EXPECT_EQ(refusing("address"), "ip=10.0.0.7 mask=255.255.0.0") << "it is in the list already";
}

TEST_F(NetworkInterfacesTest, TheHardwareAddressIsTheRadiosWhereThereIsOne) {
  const std::string radio = Of(&ZQNetwork::getMACAddr);
  EXPECT_EQ(radio.size(), 17U);
  EXPECT_EQ(radio + "\n", ReadFile("/sys/class/net/ra0/address"));
  EXPECT_EQ(TracesWithoutNews(),
            "ZQUtil zq_SocketFindInterfaceByName returned 3 for ra0\n"
            "ZQUtil returning MAC Address for interface 3, " +
                radio + "\n");
  Remove(kRadio);
  const std::string wired = Of(&ZQNetwork::getMACAddr);
  EXPECT_EQ(wired + "\n", ReadFile("/sys/class/net/eth0/address"));
  EXPECT_EQ(TracesWithoutNews(),
            "ZQUtil zq_SocketFindInterfaceByName returned -1 for ra0\n"
            "ZQUtil zq_SocketFindInterfaceByName returned 2 for eth0\n"
            "ZQUtil returning MAC Address for interface 2, " +
                wired + "\n");
  Remove(kWired);
  EXPECT_EQ(Of(&ZQNetwork::getMACAddr), "");
  EXPECT_EQ(TracesWithoutNews(),
            "ZQUtil zq_SocketFindInterfaceByName returned -1 for ra0\n"
            "ZQUtil zq_SocketFindInterfaceByName returned -1 for eth0\n"
            "ZQUtil returning MAC Address for interface -1, \n");
}

TEST_F(NetworkInterfacesTest, ConnectedIsAssociatedWithAnAddress) {
  GoWireless();
  Set(kRadio, "[link]\nup = yes\nassociated = yes\nessid = Home\n[address]\nip = 10.0.0.7\n");
  EXPECT_TRUE(Connected());
  EXPECT_EQ(TracesWithoutNews(),
            "Creating WRQ\nCopying interface name\nCalling IOCTL\nResults Connected to Home:\n");
  Set(kRadio, "[link]\nup = yes\nassociated = yes\nessid = Home\n");
  EXPECT_FALSE(Connected()) << "no address yet";
  EXPECT_NE(TracesWithoutNews().find("Results Connected to Home:\n"), std::string::npos);
  Set(kRadio, "[link]\nup = yes\nassociated = no\n[address]\nip = 10.0.0.7\n");
  EXPECT_FALSE(Connected());
  EXPECT_NE(TracesWithoutNews().find("Results Not associated:\n"), std::string::npos);
  Set(kRadio, "[link]\nup = no\nassociated = yes\n[address]\nip = 10.0.0.7\n");
  EXPECT_FALSE(Connected());
  EXPECT_EQ(Ip(), "");
}

TEST_F(NetworkInterfacesTest, ADriverThatRefusesItsStateIsNotConnected) {
  GoWireless();
  const std::pair<const char*, const char*> errors[] = {
      {"EBADF", "EBADF"}, {"EFAULT", "EFAULT"}, {"EINVAL", "EINVAL"}, {"ENOTTY", "ENOTTY"}, {"EIO", "other"}};
  for (const auto& [error, name] : errors) {
    Set(kRadio, "[link]\nup = yes\nassociated = yes\n[address]\nip = 10.0.0.7\n[driver]\nstatus = " +
                    std::string(error) + "\n");
    EXPECT_FALSE(Connected());
    EXPECT_EQ(TracesWithoutNews(),
              "Creating WRQ\nCopying interface name\nCalling IOCTL\nioctl not accepted -1\n" +
                  std::string(name) + "\n");
  }
  Remove(kRadio);
  EXPECT_FALSE(Connected());
  EXPECT_NE(TracesWithoutNews().find("ioctl not accepted -1\nother\n"), std::string::npos);
}

TEST_F(NetworkInterfacesTest, AVardo2IsConnectedWhenItsLinkIsUpAndHasAnAddress) {
  GoWireless();
  Network().hardwareType = 2;
  Set(kRadio, "[link]\nup = yes\nassociated = yes\n[address]\nip = 10.0.0.7\n");
  EXPECT_TRUE(Connected());
  EXPECT_EQ(TracesWithoutNews(),
            "Checking connected status on a Vardo2\nOpened /sys/class/net/ra0/operstate\nContents up\n\n"
            "Connection is up\n");
  Set(kRadio, "[link]\nup = yes\nassociated = yes\n");
  EXPECT_FALSE(Connected());
  EXPECT_NE(TracesWithoutNews().find("Connection is up\n"), std::string::npos);
}

TEST_F(NetworkInterfacesTest, TheStrengthIsTheLinksQuality) {
  GoWireless();
  Set(kRadio, "[link]\nup = yes\nassociated = yes\nquality = 61\n");
  EXPECT_EQ(Network().SignalStrength(), 61);
  Network().hardwareType = 2;
  EXPECT_EQ(Network().SignalStrength(), 61);
  Set(kRadio, "[link]\nup = yes\nassociated = yes\nquality = 12\n");
  EXPECT_EQ(Network().SignalStrength(), 12);
}

}  // namespace
