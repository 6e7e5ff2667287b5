// Which of the machine's interface addresses is the current interface's.
#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "InterfaceList.h"

namespace {

ifreq Entry(const std::string& name, const char* address, sa_family_t family = AF_INET) {
  ifreq entry{};
  std::copy_n(name.begin(), std::min(name.size(), sizeof entry.ifr_name), entry.ifr_name);
  sockaddr_in dotted{};
  dotted.sin_family = family;
  inet_pton(AF_INET, address, &dotted.sin_addr);
  std::memcpy(&entry.ifr_addr, &dotted, sizeof dotted);
  return entry;
}

std::vector<ifreq> Numbered(size_t count) {
  std::vector<ifreq> entries;
  for (size_t i = 0; i < count; ++i) {
    entries.push_back(
        Entry(i == 0 ? "eth0" : "eth0:" + std::to_string(i), ("10.0.0." + std::to_string(i)).c_str()));
  }
  return entries;
}

// A kernel with these addresses: it fills what there is room for. `rooms` notes each room it was given, in entries.
FillInterfaces Kernel(const std::vector<ifreq>& entries, std::string& rooms) {
  return [&entries, &rooms](ifreq* room, size_t bytes) -> std::optional<size_t> {
    const size_t count = std::min(entries.size(), bytes / sizeof(ifreq));
    rooms += std::to_string(bytes / sizeof(ifreq)) + " ";
    std::copy_n(entries.begin(), count, room);
    return count * sizeof(ifreq);
  };
}

TEST(InterfaceListTest, TheRoomDoublesUntilTheAnswerDoesNotFillIt) {
  const std::map<size_t, const char*> roomsFor = {{0, "10 "},           {1, "10 "},
                                                  {9, "10 "},           {10, "10 20 "},
                                                  {11, "10 20 "},       {19, "10 20 "},
                                                  {20, "10 20 40 "},    {39, "10 20 40 "},
                                                  {40, "10 20 40 80 "}, {255, "10 20 40 80 160 320 "}};
  for (const auto& [count, wanted] : roomsFor) {
    std::string rooms;
    const std::vector<ifreq> entries = Numbered(count);
    const auto list = ListInterfaces(Kernel(entries, rooms));
    ASSERT_TRUE(list) << count;
    EXPECT_EQ(list->size(), count);
    EXPECT_EQ(rooms, wanted) << count;
    if (count > 0) {
      EXPECT_STREQ(list->back().ifr_name, entries.back().ifr_name);
    }
  }
}

TEST(InterfaceListTest, ARefusalAtAnyRoomIsNoList) {
  for (const size_t refused : {size_t{10}, size_t{20}, size_t{40}}) {
    const auto list = ListInterfaces([refused](ifreq*, size_t bytes) -> std::optional<size_t> {
      if (bytes == refused * sizeof(ifreq)) return std::nullopt;
      return bytes;
    });
    EXPECT_FALSE(list) << refused;
  }
}

TEST(InterfaceListTest, AnswersThatCannotBeEndTheListAllTheSame) {
  const auto endless = ListInterfaces([](ifreq*, size_t bytes) { return std::optional(bytes); });
  ASSERT_TRUE(endless);
  EXPECT_GE(endless->size(), 65536U);
  const auto more = ListInterfaces([](ifreq*, size_t bytes) { return std::optional(bytes + sizeof(ifreq)); });
  ASSERT_TRUE(more);
  EXPECT_EQ(more->size(), 10U) << "no more than there was room for";
  const auto broken = ListInterfaces([](ifreq*, size_t) { return std::optional(2 * sizeof(ifreq) + 1); });
  ASSERT_TRUE(broken);
  EXPECT_EQ(broken->size(), 2U);
}

TEST(InterfaceListTest, NamesAreComparedByFourCharacters) {
  const auto is = [](const char* name, const char* interface) {
    return IsEntryOf(Entry(name, "1.2.3.4"), interface);
  };
  EXPECT_TRUE(is("eth0", "eth0"));
  EXPECT_TRUE(is("eth0:1", "eth0"));
  EXPECT_TRUE(is("eth00", "eth0"));
  EXPECT_TRUE(is("ETH0", "eth0"));
  EXPECT_FALSE(is("eth1", "eth0"));
  EXPECT_FALSE(is("eth", "eth0"));
  EXPECT_TRUE(is("ra0", "ra0"));
  EXPECT_TRUE(is("Ra0", "ra0"));
  EXPECT_FALSE(is("ra0:1", "ra0"));
  EXPECT_FALSE(is("ra01", "ra0"));
  EXPECT_FALSE(is("", "ra0"));
  EXPECT_TRUE(is("eth0567890123456", "eth0")) << "a name without its end";
}

class AddressTest : public testing::Test {
 protected:
  // The walk's result. Up are all but the names in `down`; `refused` have no flags, `addressless` no address.
  std::string Find(const char* interface, const std::vector<ifreq>& entries) {
    asked.clear();
    return AddressOf(interface, entries,
                     {.flags = [this](const ifreq& entry) -> std::optional<short> {
                        asked += std::string(entry.ifr_name) + " ";
                        if (refused == entry.ifr_name) return std::nullopt;
                        return down == entry.ifr_name ? static_cast<short>(~IFF_UP)
                                                      : static_cast<short>(IFF_UP);
                      },
                      .address = [this](const ifreq& entry) -> std::optional<in_addr> {
                        asked += "(" + std::string(entry.ifr_name) + ") ";
                        if (addressless == entry.ifr_name) return std::nullopt;
                        return EntryAddress(entry);
                      }});
  }

  std::string down;
  std::string refused;
  std::string addressless;
  std::string asked;  // what the kernel was asked: flags by name, addresses in brackets
};

TEST_F(AddressTest, IsTheInterfacesOwn) {
  const std::vector<ifreq> entries = {Entry("lo", "127.0.0.1"), Entry("eth0", "10.0.0.1"),
                                      Entry("ra0", "10.0.0.2")};
  EXPECT_EQ(Find("eth0", entries), "10.0.0.1");
  EXPECT_EQ(asked, "lo eth0 (eth0) ra0 ");
  EXPECT_EQ(Find("ra0", entries), "10.0.0.2");
  EXPECT_EQ(Find("eth1", entries), "");
  EXPECT_EQ(Find("eth0", {}), "");
}

TEST_F(AddressTest, TheLastOfSeveralWins) {
  const std::vector<ifreq> entries = {Entry("eth0", "10.0.0.1"), Entry("eth0:1", "10.0.0.2"),
                                      Entry("ra0", "10.0.0.9"), Entry("eth0:2", "10.0.0.3")};
  EXPECT_EQ(Find("eth0", entries), "10.0.0.3");
  EXPECT_EQ(Find("eth0", Numbered(40)), "10.0.0.39");
  down = "eth0:2";
  EXPECT_EQ(Find("eth0", entries), "10.0.0.2") << "the last that is up";
}

TEST_F(AddressTest, AnInterfaceThatIsDownOrGoneHasNone) {
  const std::vector<ifreq> entries = {Entry("ra0", "10.0.0.2")};
  down = "ra0";
  EXPECT_EQ(Find("ra0", entries), "");
  EXPECT_EQ(asked, "ra0 ") << "its address is not asked for";
  down.clear();
  refused = "ra0";
  EXPECT_EQ(Find("ra0", entries), "");
}

TEST_F(AddressTest, OnlyIpv4Counts) {
  EXPECT_EQ(Find("eth0", {Entry("eth0", "10.0.0.1"), Entry("eth0", "10.0.0.2", AF_INET6)}), "10.0.0.1");
  EXPECT_EQ(asked, "eth0 (eth0) ");
}

TEST_F(AddressTest, AnAddressThatTheKernelKeepsLeavesTheOneBefore) {
  addressless = "eth0:1";
  EXPECT_EQ(Find("eth0", {Entry("eth0", "10.0.0.1"), Entry("eth0:1", "10.0.0.2")}), "10.0.0.1");
}

}  // namespace
