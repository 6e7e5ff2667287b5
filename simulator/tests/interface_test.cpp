// The device's network interfaces, as a program on it meets them through sockets and the C library.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "temp_dir.h"
#include "zq_socket.h"

namespace {

std::string Hardware(const std::string& name) {
  return std::string(std::getenv("ZQ_DEVICE")) + "/hw/" + name;
}

std::string Text(const sockaddr& address) {
  sockaddr_in internet;
  memcpy(&internet, &address, sizeof(internet));
  return inet_ntoa(internet.sin_addr);
}

class InterfaceTest : public testing::Test {
 protected:
  InterfaceTest() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    WriteFile(Hardware("eth0.ini"),
              "[link]\nup = yes\ncable = plugged\n[address]\nip = 10.0.0.1\nnetmask = 255.0.0.0\n");
    std::filesystem::create_directories(Hardware("ra0"));
    WriteFile(Hardware("ra0/link.ini"), "");
  }
  ~InterfaceTest() override { close(socket_); }

  // The list with room for so many entries; "error N" when it fails.
  std::string List(size_t room) const {
    std::vector<ifreq> entries(room);
    ifconf list{};
    list.ifc_len = static_cast<int>(room * sizeof(ifreq));
    list.ifc_req = entries.data();
    if (ioctl(socket_, SIOCGIFCONF, &list) != 0) return "error " + std::to_string(errno);
    std::string text;
    for (size_t i = 0; i * sizeof(ifreq) < static_cast<size_t>(list.ifc_len); ++i) {
      text += std::string(text.empty() ? "" : ",") + entries[i].ifr_name + " " + Text(entries[i].ifr_addr);
    }
    return text;
  }
  size_t Count(size_t room) const {
    std::vector<ifreq> entries(room);
    ifconf list{};
    list.ifc_len = static_cast<int>(room * sizeof(ifreq));
    list.ifc_req = entries.data();
    EXPECT_EQ(ioctl(socket_, SIOCGIFCONF, &list), 0);
    return static_cast<size_t>(list.ifc_len) / sizeof(ifreq);
  }
  // 0, or the error.
  int Ask(unsigned long question, const std::string& name) {
    answer_ = {};
    strncpy(answer_.ifr_name, name.c_str(), IFNAMSIZ - 1);
    return ioctl(socket_, question, &answer_) == 0 ? 0 : errno;
  }
  std::string Address(unsigned long question, const std::string& name) {
    const int error = Ask(question, name);
    return error == 0 ? Text(answer_.ifr_addr) : "error " + std::to_string(error);
  }
  int Flags(const std::string& name) { return Ask(SIOCGIFFLAGS, name) == 0 ? answer_.ifr_flags : -1; }

  int socket_;
  ifreq answer_{};
};

TEST_F(InterfaceTest, TheListHasEachAddressWithItsLabel) {
  EXPECT_EQ(List(10), "lo 127.0.0.1,eth0 10.0.0.1");
  WriteFile(Hardware("ra0/link.ini"), "[address]\nip = 10.0.0.2\nalias = ra0:1 10.0.0.3\n");
  EXPECT_EQ(List(10), "lo 127.0.0.1,eth0 10.0.0.1,ra0 10.0.0.2,ra0:1 10.0.0.3");
}

TEST_F(InterfaceTest, TheListFillsTheRoomWithWholeEntriesAndTellsHowLongItIs) {
  EXPECT_EQ(List(1), "lo 127.0.0.1");
  ifconf list{};
  EXPECT_EQ(ioctl(socket_, SIOCGIFCONF, &list), 0);
  EXPECT_EQ(list.ifc_len, static_cast<int>(2 * sizeof(ifreq))) << "without a buffer: the room that all take";
  char small[sizeof(ifreq) + 1];
  list.ifc_len = sizeof(small);
  list.ifc_buf = small;
  EXPECT_EQ(ioctl(socket_, SIOCGIFCONF, &list), 0);
  EXPECT_EQ(list.ifc_len, static_cast<int>(sizeof(ifreq)));
}

TEST_F(InterfaceTest, TheListHasAsManyAliasesAsAPersonWrites) {
  for (const size_t wanted : {9, 10, 11, 40}) {
    std::string text = "[address]\nip = 10.0.0.1\n";
    for (size_t i = 2; i < wanted; ++i) {
      text += "alias = eth0:" + std::to_string(i) + " 10.0.1." + std::to_string(i) + "\n";
    }
    WriteFile(Hardware("eth0.ini"), text);
    EXPECT_EQ(Count(100), wanted);
    EXPECT_EQ(Count(10), std::min<size_t>(wanted, 10));
  }
}

TEST_F(InterfaceTest, FlagsSayWhetherItIsUpAndRunning) {
  constexpr int kCard = IFF_BROADCAST | IFF_MULTICAST;
  EXPECT_EQ(Flags("lo"), IFF_LOOPBACK | IFF_UP | IFF_RUNNING);
  EXPECT_EQ(Flags("eth0"), kCard | IFF_UP | IFF_RUNNING);
  EXPECT_EQ(Flags("eth0:1"), kCard | IFF_UP | IFF_RUNNING) << "a label is the same interface";
  EXPECT_EQ(Flags("ra0"), kCard);
  WriteFile(Hardware("eth0.ini"), "[link]\nup = yes\ncable = unplugged\n");
  EXPECT_EQ(Flags("eth0"), kCard | IFF_UP);
}

TEST_F(InterfaceTest, AnAddressIsFoundByItsLabel) {
  WriteFile(Hardware("eth0.ini"),
            "[address]\nip = 10.0.0.1\nnetmask = 255.0.0.0\nalias = eth0:1 10.9.0.1 255.255.0.0\nalias = "
            "eth0 10.8.0.1\n");
  EXPECT_EQ(Address(SIOCGIFADDR, "eth0"), "10.0.0.1");
  EXPECT_EQ(Address(SIOCGIFNETMASK, "eth0"), "255.0.0.0");
  EXPECT_EQ(Address(SIOCGIFBRDADDR, "eth0"), "10.255.255.255");
  EXPECT_EQ(Address(SIOCGIFNETMASK, "eth0:1"), "255.255.0.0");
  EXPECT_EQ(Address(SIOCGIFADDR, "ra0"), "error " + std::to_string(EADDRNOTAVAIL));
  sockaddr_in second{};
  second.sin_family = AF_INET;
  second.sin_addr.s_addr = inet_addr("10.8.0.1");
  answer_ = {};
  strcpy(answer_.ifr_name, "eth0");
  memcpy(&answer_.ifr_addr, &second, sizeof(second));
  EXPECT_EQ(ioctl(socket_, SIOCGIFNETMASK, &answer_), 0);
  EXPECT_EQ(Text(answer_.ifr_addr), "255.255.255.0") << "of two with one label, the one that was asked for";
}

TEST_F(InterfaceTest, TheHardwareAddressIsWhatTheKernelsFileSays) {
  EXPECT_EQ(Ask(SIOCGIFHWADDR, "eth0"), 0);
  EXPECT_EQ(answer_.ifr_hwaddr.sa_family, ARPHRD_ETHER);
  EXPECT_EQ(std::string(answer_.ifr_hwaddr.sa_data, 6), std::string("\x02\0\0\0\x10\x02", 6));
  WriteFile("/sys/class/net/eth0/address", "nonsense");
  EXPECT_EQ(Ask(SIOCGIFHWADDR, "eth0"), 0);
  EXPECT_EQ(std::string(answer_.ifr_hwaddr.sa_data, 6), std::string(6, '\0'));
  WriteFile("/sys/class/net/eth0/address", "02:00:00:00:10:02\n");
}

TEST_F(InterfaceTest, NamesAndIndicesBelongTogether) {
  for (const char* const name : {"lo", "eth0", "ra0"}) {
    ASSERT_EQ(Ask(SIOCGIFINDEX, name), 0) << name;
    const int index = answer_.ifr_ifindex;
    EXPECT_EQ(ioctl(socket_, SIOCGIFNAME, &answer_), 0);
    EXPECT_STREQ(answer_.ifr_name, name);
    EXPECT_EQ(if_nametoindex(name), static_cast<unsigned>(index));
    char text[IF_NAMESIZE];
    EXPECT_STREQ(if_indextoname(static_cast<unsigned>(index), text), name);
  }
  answer_.ifr_ifindex = 99;
  EXPECT_EQ(ioctl(socket_, SIOCGIFNAME, &answer_), -1);
  EXPECT_EQ(errno, ENODEV);
  char text[IF_NAMESIZE];
  EXPECT_EQ(if_indextoname(99, text), nullptr);
  EXPECT_EQ(if_nametoindex("docker0"), 0U);
}

TEST_F(InterfaceTest, AnInterfaceWhoseFileIsGoneIsNone) {
  std::filesystem::remove_all(Hardware("ra0"));
  EXPECT_EQ(Ask(SIOCGIFFLAGS, "ra0"), ENODEV);
  EXPECT_EQ(Ask(SIOCGIFINDEX, "ra0"), ENODEV);
  EXPECT_EQ(if_nametoindex("ra0"), 0U);
  EXPECT_EQ(zq_SocketGetInterfaceCount(), 1);
  std::filesystem::remove(Hardware("eth0.ini"));
  EXPECT_EQ(List(10), "lo 127.0.0.1");
  EXPECT_EQ(zq_SocketGetInterfaceCount(), 0);
}

TEST_F(InterfaceTest, ThePlatformsQuestionsAreAnsweredForTheDevice) {
  EXPECT_EQ(zq_SocketGetInterfaceCount(), 2);
  EXPECT_EQ(zq_SocketFindInterfaceByName("eth0"), 2);
  EXPECT_EQ(zq_SocketFindInterfaceByName("ra0"), 3);
  EXPECT_EQ(zq_SocketFindInterfaceByName("eth1"), -1);
  char mac[ZQ_MAC_TEXT];
  EXPECT_TRUE(zq_GetMACofInterface(3, mac));
  EXPECT_STREQ(mac, "02:00:00:00:10:01");
}

TEST_F(InterfaceTest, TheListOfAddressesTellsTheSame) {
  WriteFile(Hardware("ra0/link.ini"), "[link]\nup = yes\n[address]\nip = 10.0.0.2\nalias = ra0:1 10.0.0.3\n");
  ifaddrs* first = nullptr;
  ASSERT_EQ(getifaddrs(&first), 0);
  std::string text;
  for (const ifaddrs* at = first; at != nullptr; at = at->ifa_next) {
    text += at->ifa_name;
    if (at->ifa_addr->sa_family == AF_INET) text += " " + Text(*at->ifa_addr) + "/" + Text(*at->ifa_netmask);
    if (at->ifa_addr->sa_family == AF_PACKET) {
      text += "#" + std::to_string(reinterpret_cast<const sockaddr_ll*>(at->ifa_addr)->sll_ifindex);
    }
    text += (at->ifa_flags & IFF_RUNNING) != 0 ? " running\n" : "\n";
  }
  freeifaddrs(first);
  EXPECT_EQ(text,
            "lo#1 running\nlo 127.0.0.1/255.0.0.0 running\neth0#2 running\neth0 10.0.0.1/255.0.0.0 running\n"
            "ra0#3\nra0 10.0.0.2/255.255.255.0\nra0:1 10.0.0.3/255.255.255.0\n");
  struct if_nameindex* names = if_nameindex();
  ASSERT_NE(names, nullptr);
  EXPECT_STREQ(names[2].if_name, "ra0");
  EXPECT_EQ(names[3].if_index, 0U);
  if_freenameindex(names);
}

TEST_F(InterfaceTest, ARequestFailsWhenAPersonWantsIt) {
  const auto failing = [](const std::string& request) {
    WriteFile(Hardware("eth0.ini"), "[address]\nip = 10.0.0.1\n[requests]\n" + request + " = EIO\n");
  };
  failing("list");
  EXPECT_EQ(List(10), "error " + std::to_string(EIO));
  ifaddrs* first = nullptr;
  EXPECT_EQ(getifaddrs(&first), -1);
  failing("flags");
  EXPECT_EQ(List(10), "lo 127.0.0.1,eth0 10.0.0.1");
  EXPECT_EQ(Ask(SIOCGIFFLAGS, "eth0"), EIO);
  EXPECT_EQ(Ask(SIOCGIFFLAGS, "ra0"), 0);
  failing("address");
  EXPECT_EQ(Ask(SIOCGIFADDR, "eth0"), EIO);
  failing("netmask");
  EXPECT_EQ(Ask(SIOCGIFNETMASK, "eth0"), EIO);
  EXPECT_EQ(Ask(SIOCGIFADDR, "eth0"), 0);
  failing("hardware");
  EXPECT_EQ(Ask(SIOCGIFHWADDR, "eth0"), EIO);
  failing("index");
  EXPECT_EQ(Ask(SIOCGIFINDEX, "eth0"), EIO);
  EXPECT_EQ(if_nametoindex("eth0"), 0U);
}

TEST_F(InterfaceTest, NothingOnTheDeviceChangesTheMachinesInterfaces) {
  EXPECT_EQ(Ask(SIOCSIFFLAGS, "eth0"), EOPNOTSUPP);
  EXPECT_EQ(Ask(SIOCSIFADDR, "lo"), EOPNOTSUPP);
  EXPECT_EQ(Ask(SIOCSIFFLAGS, "docker0"), ENODEV);
  EXPECT_EQ(ioctl(socket_, SIOCADDRT, nullptr), -1);
}

TEST_F(InterfaceTest, OnlySocketsAnswer) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  EXPECT_EQ(ioctl(ends[0], SIOCGIFINDEX, &answer_), -1);
  EXPECT_EQ(errno, ENOTTY);
  close(ends[0]);
  close(ends[1]);
  EXPECT_EQ(ioctl(-1, SIOCGIFINDEX, &answer_), -1);
  EXPECT_EQ(errno, EBADF);
}

}  // namespace
