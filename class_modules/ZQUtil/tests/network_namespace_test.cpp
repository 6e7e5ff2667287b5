// The probes over real interfaces named ra0 and eth0: in a network namespace of their own, where the machine allows a
// process one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "OwnedText.h"
#include "ZQNetwork.h"
#include "nvram.h"
#include "run_program.h"
#include "temp_dir.h"

namespace {

constexpr char kInside[] = "ZQ_TEST_IN_NAMESPACE";

// Bridges without members are interfaces like any other.
constexpr char kSetUp[] =
    "set -e\n"
    "ip link set lo up\n"
    "ip link add eth0 address 02:00:00:00:ee:00 type bridge\n"
    "ip addr add 10.0.0.7/16 dev eth0\n"
    "ip addr add 10.0.1.7/24 dev eth0 label eth0:1\n"
    "ip link set eth0 up\n"
    "ip link add ra0 address 02:00:00:00:aa:00 type bridge\n"
    "ip addr add 10.1.0.7/8 dev ra0\n"
    "ip link set ra0 up\n"
    "ip route add default via 10.0.0.1 dev eth0\n";

bool NamespacesAreAllowed() {
  return RunProgram({"unshare", "-rn", "ip", "link", "add", "ra0", "type", "bridge"}).status == 0;
}

// What is to be seen by the process in the namespace.
class RealInterfaces {
 public:
  RealInterfaces() {
    WriteFile(folder_ / "config", (folder_ / "a") + " 0 0x4000\n" + (folder_ / "b") + " 0 0x4000\n");
    setenv("ZQ_NVRAM_CONFIG", (folder_ / "config").c_str(), 1);
  }

  void GoWireless(bool wireless) {
    const int store = nvram_open(0, 0);
    ASSERT_NE(store, -1);
    nvram_write_key(store, nullptr, "net.wifi", wireless ? "YES" : "NO");
    nvram_close(store);
  }
  static void Run(const std::string& command) {
    EXPECT_EQ(RunProgram({"sh", "-c", command}).status, 0) << command;
  }
  std::string Of(char* (ZQNetwork::*probe)()) { return OwnedText((network_.*probe)()).get(); }
  ZQNetwork& Network() { return network_; }

 private:
  const TempDir folder_;
  ZQNetwork network_{true};
};

void CheckProbes() {
  RealInterfaces device;
  device.GoWireless(false);
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentIP), "10.0.1.7") << "the alias";
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentNetmask), "255.255.255.0");
  EXPECT_EQ(device.Of(&ZQNetwork::getGateway), "10.0.0.1");
  EXPECT_EQ(device.Of(&ZQNetwork::getMACAddr), "02:00:00:00:aa:00");
  device.GoWireless(true);
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentIP), "10.1.0.7");
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentNetmask), "255.0.0.0");
  EXPECT_FALSE(device.Network().ConnectedStatus()) << "no radio's driver answers";

  device.Run("ip link set ra0 down");
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentIP), "");
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentNetmask), "");
  device.Run("ip link del ra0");
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentIP), "");
  EXPECT_EQ(device.Of(&ZQNetwork::getMACAddr), "02:00:00:00:ee:00");

  device.GoWireless(false);
  for (int alias = 2; alias <= 40; ++alias) {
    device.Run("ip addr add 10.0." + std::to_string(alias) +
               ".7/24 dev eth0 label eth0:" + std::to_string(alias));
  }
  EXPECT_EQ(device.Of(&ZQNetwork::getCurrentIP), "10.0.40.7") << "the last of 41";
  device.Run("ip route del default");
  EXPECT_EQ(device.Of(&ZQNetwork::getGateway), "0.0.0.0");
}

TEST(NetworkNamespaceTest, TheProbesAnswerWhatTheKernelHas) {
  if (getenv(kInside) != nullptr) return CheckProbes();
  if (!NamespacesAreAllowed()) return;  // the simulated interfaces have to do
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  const ProgramResult inside =
      RunProgram({"unshare", "-rn", "sh", "-c", std::string(kSetUp) + "exec \"$0\"", self},
                 {.environment = {std::string(kInside) + "=1"}});
  EXPECT_EQ(inside.status, 0) << inside.output << inside.errors;
  EXPECT_NE(inside.output.find("[  PASSED  ] 1 test."), std::string::npos) << inside.output << inside.errors;
}

}  // namespace
