// The machine's interfaces, on a machine that stands before libc's calls, and on the real one.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "temp_dir.h"
#include "zq_socket.h"

namespace {

struct Card {
  int index;
  std::string name;
  unsigned flags;
  unsigned short kind;
  std::array<unsigned char, 6> mac;
  std::vector<std::string> labels;  // one address each
};

const std::vector<Card>* g_machine = nullptr;  // null: the system answers
bool g_refuses = false;

template <typename Match>
int Answer(Match match, void (*fill)(const Card&, ifreq*), ifreq* request) {
  const auto card = std::ranges::find_if(*g_machine, match);
  if (card == g_machine->end()) {
    errno = ENODEV;
    return -1;
  }
  fill(*card, request);
  return 0;
}

int Simulated(unsigned long question, ifreq* request) {
  const auto named = [request](const Card& card) { return card.name == request->ifr_name; };
  switch (question) {
    case SIOCGIFINDEX:
      return Answer(
          named, [](const Card& card, ifreq* r) { r->ifr_ifindex = card.index; }, request);
    case SIOCGIFNAME:
      return Answer([request](const Card& card) { return card.index == request->ifr_ifindex; },
                    [](const Card& card, ifreq* r) {
                      snprintf(r->ifr_name, sizeof r->ifr_name, "%s", card.name.c_str());
                    },
                    request);
    case SIOCGIFHWADDR:
      return Answer(
          named,
          [](const Card& card, ifreq* r) {
            r->ifr_hwaddr.sa_family = card.kind;
            memcpy(r->ifr_hwaddr.sa_data, card.mac.data(), card.mac.size());
          },
          request);
    default:
      errno = EINVAL;
      return -1;
  }
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int ioctl(int fd, unsigned long question, ...) noexcept {
  va_list arguments;
  va_start(arguments, question);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  if (g_machine != nullptr) return Simulated(question, static_cast<ifreq*>(argument));
  static const auto system = reinterpret_cast<int (*)(int, unsigned long, ...)>(dlsym(RTLD_NEXT, "ioctl"));
  return system(fd, question, argument);
}

__attribute__((visibility("default"))) int getifaddrs(ifaddrs** list) noexcept {
  if (g_refuses) {
    errno = ENOBUFS;
    return -1;
  }
  if (g_machine == nullptr) {
    static const auto system = reinterpret_cast<int (*)(ifaddrs**)>(dlsym(RTLD_NEXT, "getifaddrs"));
    return system(list);
  }
  *list = nullptr;
  for (const Card& card : *g_machine) {
    for (const std::string& label : card.labels) {
      *list = new ifaddrs{*list, strdup(label.c_str()), card.flags, nullptr, nullptr, {}, nullptr};
    }
  }
  return 0;
}

__attribute__((visibility("default"))) void freeifaddrs(ifaddrs* list) noexcept {
  if (g_machine == nullptr) {
    static const auto system = reinterpret_cast<void (*)(ifaddrs*)>(dlsym(RTLD_NEXT, "freeifaddrs"));
    system(list);
    return;
  }
  while (list != nullptr) {
    ifaddrs* next = list->ifa_next;
    free(list->ifa_name);
    delete list;
    list = next;
  }
}

}  // extern "C"

namespace {

class Interfaces : public testing::Test {
 protected:
  Interfaces() { g_machine = &machine_; }
  ~Interfaces() override {
    g_machine = nullptr;
    g_refuses = false;
  }

  static std::string MacOf(int index) {
    char text[ZQ_MAC_TEXT] = "untouched";
    const bool found = zq_GetMACofInterface(index, text);
    EXPECT_EQ(found, text[0] != '\0');
    return text;
  }
  static std::string FirstMac() {
    char text[ZQ_MAC_TEXT] = "untouched";
    const bool found = zq_GetMACAddress(text);
    EXPECT_EQ(found, text[0] != '\0');
    return text;
  }

  const Card lo_{1, "lo", IFF_UP | IFF_LOOPBACK, ARPHRD_LOOPBACK, {}, {"lo", "lo", "lo"}};
  const Card eth_{
      3, "eth0", IFF_UP, ARPHRD_ETHER, {0, 0x1B, 0xC5, 0xAB, 0xCD, 0xEF}, {"eth0", "eth0", "eth0:1"}};
  const Card wifi_{12, "ra0", 0, ARPHRD_ETHER, {2, 0, 0, 0, 0, 1}, {"ra0"}};
  const Card tunnel_{2, "tun0", IFF_UP, ARPHRD_NONE, {1, 2, 3, 4, 5, 6}, {"tun0"}};
  std::vector<Card> machine_{lo_, wifi_, eth_, tunnel_};
};

TEST_F(Interfaces, EachCountsOnceWhateverAddressesItHasAndTheLoopbackDoesNot) {
  EXPECT_EQ(zq_SocketGetInterfaceCount(), 3);
  machine_ = {lo_};
  EXPECT_EQ(zq_SocketGetInterfaceCount(), 0);
  machine_ = {};
  EXPECT_EQ(zq_SocketGetInterfaceCount(), 0);
}

TEST_F(Interfaces, AreNoneWhileTheSystemRefusesToTell) {
  g_refuses = true;
  EXPECT_EQ(zq_SocketGetInterfaceCount(), 0);
  EXPECT_EQ(FirstMac(), "");
}

TEST_F(Interfaces, AreFoundByTheirName) {
  EXPECT_EQ(zq_SocketFindInterfaceByName("ra0"), 12);
  EXPECT_EQ(zq_SocketFindInterfaceByName("eth0"), 3);
  EXPECT_EQ(zq_SocketFindInterfaceByName("eth1"), -1);
  EXPECT_EQ(zq_SocketFindInterfaceByName(""), -1);
  EXPECT_EQ(zq_SocketFindInterfaceByName(nullptr), -1);
}

TEST_F(Interfaces, ANameThatIsTooLongIsNotCutToOneThatExists) {
  machine_ = {{4, "fifteenletters0", IFF_UP, ARPHRD_ETHER, {1}, {"fifteenletters0"}}};
  EXPECT_EQ(zq_SocketFindInterfaceByName("fifteenletters0"), 4);
  EXPECT_EQ(zq_SocketFindInterfaceByName("fifteenletters01"), -1);
  EXPECT_EQ(zq_SocketFindInterfaceByName(std::string(5000, 'e').c_str()), -1);
}

TEST_F(Interfaces, HardwareAddressesAreSixPairsOfLowerCaseDigits) {
  EXPECT_EQ(MacOf(3), "00:1b:c5:ab:cd:ef");
  EXPECT_EQ(MacOf(12), "02:00:00:00:00:01");
}

TEST_F(Interfaces, ThatAreGoneOrHaveNoHardwareAddressGiveTheEmptyText) {
  EXPECT_EQ(MacOf(2), "") << "a tunnel";
  EXPECT_EQ(MacOf(1), "") << "the loopback";
  for (const int index : {99, 0, -1, INT32_MAX, INT32_MIN}) EXPECT_EQ(MacOf(index), "") << index;
}

TEST_F(Interfaces, AllZerosAreNoHardwareAddress) {
  machine_ = {{4, "eth9", IFF_UP, ARPHRD_ETHER, {}, {"eth9"}}};
  EXPECT_EQ(MacOf(4), "");
  EXPECT_EQ(FirstMac(), "");
}

TEST_F(Interfaces, TheMachinesAddressIsThatOfTheLeastIndexThatHasOne) {
  EXPECT_EQ(FirstMac(), "00:1b:c5:ab:cd:ef");
  machine_ = {lo_, wifi_, tunnel_};
  EXPECT_EQ(FirstMac(), "02:00:00:00:00:01");
  machine_ = {lo_, tunnel_};
  EXPECT_EQ(FirstMac(), "");
}

// What the kernel says in /sys is the measure here; the code under test never looks there.
TEST(RealInterfaces, AreWhatTheKernelLists) {
  int counted = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/sys/class/net")) {
    if (!std::filesystem::is_directory(entry)) continue;
    const std::string name = entry.path().filename();
    const int index = zq_SocketFindInterfaceByName(name.c_str());
    EXPECT_EQ(std::to_string(index) + "\n", ReadFile(entry.path() / "ifindex")) << name;
    if (name != "lo") ++counted;
    char mac[ZQ_MAC_TEXT];
    if (zq_GetMACofInterface(index, mac)) {
      EXPECT_EQ(std::string(mac) + "\n", ReadFile(entry.path() / "address")) << name;
    }
  }
  EXPECT_EQ(zq_SocketGetInterfaceCount(), counted);
}

}  // namespace
