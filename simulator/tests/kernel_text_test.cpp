// What the kernel's files say.
#include "kernel_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr const char* kTitle =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

std::string Of(void (*add)(const InterfaceState&, KernelText*), const std::string& settings) {
  char buffer[64];
  KernelText text(buffer, sizeof(buffer));
  add(ParseInterface("ra0", settings), &text);
  return std::string(text.View());
}

std::string Routes(const std::string& settings) {
  char buffer[4096];
  KernelText text(buffer, sizeof(buffer));
  AddRouteTitle(&text);
  AddRoutes("eth0", ParseInterface("eth0", settings), &text);
  return std::string(text.View());
}

TEST(KernelText, ALinkIsUpWhenTheInterfaceIsAndTheCableIsIn) {
  EXPECT_EQ(Of(AddOperstate, "[link]\nup = yes\ncable = plugged"), "up\n");
  EXPECT_EQ(Of(AddOperstate, "[link]\nup = no\ncable = plugged"), "down\n");
  EXPECT_EQ(Of(AddOperstate, "[link]\nup = yes\nassociated = no"), "down\n");
  EXPECT_EQ(Of(AddCarrier, "[link]\nup = yes\nassociated = yes"), "1\n");
  EXPECT_EQ(Of(AddCarrier, "[link]\nassociated = yes"), "0\n");
}

TEST(KernelText, TheRadiosLinkIsItsQualityWhileItIsUp) {
  const auto link = [](const std::string& settings) {
    return Of([](const InterfaceState& state, KernelText* text) { AddWirelessLink(state, 92, text); },
              settings);
  };
  EXPECT_EQ(link("[link]\nup = yes\nassociated = yes"), "92\n");
  EXPECT_EQ(link("[link]\nup = yes\nassociated = no"), "0\n");
  EXPECT_EQ(link("[link]\nassociated = yes"), "0\n");
}

TEST(KernelText, RoutesAreTheDefaultAndTheNetworks) {
  EXPECT_EQ(Routes("[link]\nup = yes\n[address]\nip = 192.168.1.57\ngateway = 192.168.1.1\nalias = eth0:1 "
                   "10.2.3.4 255.0.0.0"),
            std::string(kTitle) +
                "eth0\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"
                "eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
                "eth0\t0000000A\t00000000\t0001\t0\t0\t0\t000000FF\t0\t0\t0\n");
}

TEST(KernelText, AnInterfaceThatIsDownHasNoRoutes) {
  EXPECT_EQ(Routes("[address]\nip = 192.168.1.57\ngateway = 192.168.1.1"), kTitle);
  EXPECT_EQ(Routes("[link]\nup = yes\n"), kTitle);
}

TEST(KernelText, LeavesOutWhatDoesNotFit) {
  char buffer[5];
  KernelText text(buffer, sizeof(buffer));
  text.Add("four");
  text.Add("ab");
  text.AddNumber(7);
  text.AddNumber(0);
  EXPECT_EQ(text.View(), "four7");
}

}  // namespace
