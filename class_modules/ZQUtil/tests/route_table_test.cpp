// The default route out of the kernel's table.
#include <gtest/gtest.h>

#include <map>

#include "RouteTable.h"

namespace {

std::string Gateway(const std::string& line) {
  return GatewayAddress(DefaultRouteGateway(line)).text;
}

TEST(RouteTableTest, TheGatewaysBytesStandBackwards) {
  EXPECT_EQ(Gateway("eth0\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"), "192.168.1.1");
  EXPECT_EQ(Gateway("ra0\t00000000\tFE010A0a\t0003\n"), "10.10.1.254") << "digits in either case";
  EXPECT_EQ(Gateway("ra0\t00000000\t00000000\t0001\n"), "0.0.0.0");
  EXPECT_EQ(Gateway("ra0\t00000000\tFFFFFFFF\t0001\n"), "255.255.255.255");
}

TEST(RouteTableTest, OnlyADestinationOfZerosIsTheDefault) {
  for (const char* line : {"Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n",
                           "eth0\t0001A8C0\t00000000\t0001\t0\n", "eth0\t0000000\t0101A8C0\t0001\n",
                           "eth0\t 00000000\t0101A8C0\t0003\n", "eth0\t0000000g\t0101A8C0\t0003\n"}) {
    EXPECT_EQ(DefaultRouteGateway(line), "") << line;
  }
  EXPECT_EQ(Gateway("\t00000000\t0101A8C0\t0003\n"), "192.168.1.1") << "whatever the interface";
  EXPECT_EQ(Gateway("eth0\t000000001\t0101A8C0\t0003\n"), "192.168.1.1") << "begins with eight zeros";
}

TEST(RouteTableTest, MoreThanEightCharactersFollowTheDestination) {
  EXPECT_EQ(DefaultRouteGateway("eth0\t00000000\t0101A8C0"), "");
  EXPECT_EQ(DefaultRouteGateway("eth0\t00000000\t0101A8C0\n"), "0101A8C0\n");
  EXPECT_EQ(DefaultRouteGateway("eth0\t00000000\t0101A8C0\t"), "0101A8C0\t");
}

TEST(RouteTableTest, LinesOfAnotherShapeNameNoGateway) {
  for (const char* line :
       {"", "\n", "\t", "\t\t\t\t\n", "eth0", "eth0\t", "eth0\t00000000", "eth0\t00000000\n",
        "eth0\t00000000\t", "eth0 00000000 0101A8C0 0003\n", "eth0\t00000000 0101A8C0 0003\n",
        "00000000\t0101A8C0\t0003\n",
        "fe80000000000000 40 00000000000000000000000000000000 00 00000000000000000000000000000000 eth0\n"}) {
    EXPECT_EQ(DefaultRouteGateway(line), "") << line;
  }
}

TEST(RouteTableTest, AGatewayThatIsNoEightDigitsIsNone) {
  for (const char* line : {"eth0\t00000000\t0101A8C\t0003\n", "eth0\t00000000\t0101A8Cg\t0003\n",
                           "eth0\t00000000\t-101A8C0\t0003\n", "eth0\t00000000\t 101A8C0\t0003\n",
                           "eth0\t00000000\t0x01A8C0\t0003\n", "eth0\t00000000\t+101A8C0\t0003\n"}) {
    EXPECT_EQ(Gateway(line), "") << line;
    EXPECT_NE(DefaultRouteGateway(line), "") << line;
  }
  EXPECT_EQ(Gateway("eth0\t00000000\t0101A8C0FF\t0003\n"), "192.168.1.1") << "the first eight count";
}

}  // namespace
