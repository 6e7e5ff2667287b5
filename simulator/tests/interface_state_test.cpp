// What is understood of an interface's file.
#include "interface_state.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Text(const Ipv4& ip) {
  std::string text;
  for (const uint8_t byte : ip.bytes) text += (text.empty() ? "" : ".") + std::to_string(byte);
  return text;
}

// The whole state in a line.
std::string Read(const std::string& text, const std::string& name = "eth0") {
  const InterfaceState state = ParseInterface(name, text);
  std::string line = std::string(state.up ? "up" : "down") + (state.link ? " link" : "");
  for (size_t i = 0; i < state.count; ++i) {
    line += std::string(", ") + state.addresses[i].label + " " + Text(state.addresses[i].ip) + "/" +
            Text(state.addresses[i].netmask);
  }
  if (!state.gateway.IsNone()) line += ", gateway " + Text(state.gateway);
  for (const int error : state.errors) {
    if (error != 0) line += ", error " + std::to_string(error);
  }
  return line;
}

TEST(InterfaceState, AnEmptyFileIsAnInterfaceThatIsDown) {
  EXPECT_EQ(Read(""), "down");
  EXPECT_EQ(Read("\n\n;\n#\n[link\n[]\n=\nup\n"), "down");
}

TEST(InterfaceState, TakesTheLinkFromItsSection) {
  EXPECT_EQ(Read("[link]\nup = yes\ncable = plugged\n"), "up link");
  EXPECT_EQ(Read("[link]\n up=yes\t\n\tassociated =yes\r\nquality = 71"), "up link");
  EXPECT_EQ(Read("[link]\nup = yes\nup = no\ncable = plugged\ncable = unplugged\n"), "down");
  EXPECT_EQ(Read("up = yes\n[other]\nup = yes\n"), "down");
  EXPECT_EQ(Read("[link]\nup = yes\nup = perhaps\nup\n"), "up");
}

TEST(InterfaceState, TakesItsAddressAndFurtherOnes) {
  EXPECT_EQ(Read("[address]\nip = 10.0.0.1\n"), "down, eth0 10.0.0.1/255.255.255.0");
  EXPECT_EQ(Read("[address]\nip = 10.0.0.1\nnetmask = 255.0.0.0\ngateway = 10.0.0.254\n"),
            "down, eth0 10.0.0.1/255.0.0.0, gateway 10.0.0.254");
  EXPECT_EQ(Read("[address]\nalias = eth0:1 10.0.0.2\nalias = eth0:2\t10.0.0.3  255.0.0.0 \nip = 10.0.0.1\n"),
            "down, eth0 10.0.0.1/255.255.255.0, eth0:1 10.0.0.2/255.255.255.0, eth0:2 10.0.0.3/255.0.0.0");
  EXPECT_EQ(Read("[address]\nalias = eth0:1 10.0.0.2\n"), "down, eth0:1 10.0.0.2/255.255.255.0");
  EXPECT_EQ(Read("[address]\nip = 0.0.0.0\n"), "down");
}

TEST(InterfaceState, ASecondLookAtAnAddressKeepsTheLastThatIsOne) {
  EXPECT_EQ(Read("[address]\nip = 10.0.0.1\nip =\nip = none\n"), "down, eth0 10.0.0.1/255.255.255.0");
}

TEST(InterfaceState, HasAsManyAddressesAsThereIsRoomFor) {
  std::string text = "[address]\nip = 10.0.0.1\n";
  for (int i = 1; i <= 100; ++i)
    text += "alias = eth0:" + std::to_string(i) + " 10.0.1." + std::to_string(i) + "\n";
  const InterfaceState state = ParseInterface("eth0", text);
  ASSERT_EQ(state.count, kMostAddresses);
  EXPECT_STREQ(state.addresses[63].label, "eth0:63");
}

TEST(InterfaceState, AnAliasThatIsNoneIsPassedOver) {
  for (const char* const bad : {"", "eth0:1", "eth0:1 10.0.0", "eth0:1 10.0.0.1 255",
                                "sixteen_letters_ 10.0.0.1", "10.0.0.1 eth0:1"}) {
    EXPECT_EQ(Read(std::string("[address]\nalias = ") + bad + "\n"), "down") << bad;
  }
  EXPECT_EQ(Read("[address]\nalias = fifteen_letters 10.0.0.1\n"),
            "down, fifteen_letters 10.0.0.1/255.255.255.0");
}

TEST(InterfaceState, ANameThatIsTooLongHasNoAddressOfItsOwn) {
  EXPECT_EQ(Read("[address]\nip = 10.0.0.1\n", "sixteen_letters_"), "down");
}

TEST(InterfaceState, NamesTheErrorsOfRequests) {
  EXPECT_EQ(Read("[requests]\nlist = EIO\nindex = ENODEV\n"), "down, error 5, error 19");
  EXPECT_EQ(Read("[requests]\nflags=EIO\naddress=EIO\nnetmask=EIO\nhardware=EIO\n"),
            "down, error 5, error 5, error 5, error 5");
  EXPECT_EQ(Read("[requests]\nlist = EIO\nlist = works\nflags = no\n"), "down");
}

TEST(InterfaceState, AddressesAreFourNumbers) {
  Ipv4 ip{{1, 2, 3, 4}};
  for (const char* const bad :
       {"", ".", "...", "1", "1.2.3", "1.2.3.", ".1.2.3", "1.2.3.4.", "1.2.3.4.5", "256.1.1.1", "1.1.1.999",
        "1.1.1.0001", "1.1.1.x", "1.1.1.-1", " 1.1.1.1", "1..1.1", "99999999999999999999.1.1.1"}) {
    EXPECT_FALSE(ReadIpv4(bad, &ip)) << bad;
    EXPECT_EQ(Text(ip), "1.2.3.4");
  }
  EXPECT_TRUE(ReadIpv4("255.0.010.9", &ip));
  EXPECT_EQ(Text(ip), "255.0.10.9");
}

}  // namespace
