// Changes of the device's network interfaces are reported to programs on it, without anything else to start.
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "recording_queue.h"
#include "temp_dir.h"
#include "zq_msgq.h"

namespace {

namespace fs = std::filesystem;

std::string Hardware(const std::string& name) {
  return std::string(std::getenv("ZQ_DEVICE")) + "/hw/" + name;
}

// Puts the text in the file's place at once, as the scripts do: a reader meets no file that is just being written.
void Replace(const std::string& name, const std::string& text) {
  WriteFile(Hardware(name + ".new"), text);
  fs::rename(Hardware(name + ".new"), Hardware(name));
}

std::string OnlyInterfaces(const MSG_COMMON& message) {
  return message.type == ZQ_MSG_NEW_INTERFACES ? "changed" : "";
}

class InterfaceNews : public testing::Test {
 protected:
  InterfaceNews() {
    fs::create_directories(Hardware("ra0"));
    WriteFile(Hardware("eth0.ini"), "[link]\nup = yes\n");
    WriteFile(Hardware("ra0/link.ini"), "");
  }
};

TEST_F(InterfaceNews, TheModulesQueueHearsOfAnAddressThatComesAndGoes) {
  RecordingQueue queue({}, OnlyInterfaces);
  queue.Start();
  WriteFile(Hardware("eth0.ini"), "[link]\nup = yes\n[address]\nip = 10.0.0.1\n");
  queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
  WriteFile(Hardware("eth0.ini"), "[link]\nup = yes\n");
  queue.Await(ZQ_MSG_NEW_INTERFACES, 2);
  queue.Drain();
  EXPECT_EQ(queue.Take(), "changed,changed");
}

TEST_F(InterfaceNews, TheModulesQueueHearsOfARadioThatComesAndGoes) {
  fs::remove_all(Hardware("ra0"));
  RecordingQueue queue({}, OnlyInterfaces);
  queue.Start();
  fs::create_directories(Hardware("new"));
  WriteFile(Hardware("new/link.ini"), "[link]\nup = yes\n");
  fs::rename(Hardware("new"), Hardware("ra0"));
  queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
  WriteFile(Hardware("ra0/link.ini"), "[link]\nup = yes\nassociated = yes\n");
  queue.Await(ZQ_MSG_NEW_INTERFACES, 2);
  fs::remove(Hardware("ra0/link.ini"));
  queue.Await(ZQ_MSG_NEW_INTERFACES, 3);
}

TEST_F(InterfaceNews, AFileThatIsReplacedAsTheScriptsDoItIsOneChange) {
  RecordingQueue queue({}, OnlyInterfaces);
  queue.Start();
  Replace("eth0.ini", "[link]\nup = yes\ncable = plugged\n");
  queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
  queue.Drain();
  EXPECT_EQ(queue.Take(), "changed");
}

TEST_F(InterfaceNews, WhatSaysNothingNewIsNoReport) {
  RecordingQueue queue({}, OnlyInterfaces);
  queue.Start();
  Replace("eth0.ini", "[link]\nup = yes\n; the same\n");
  WriteFile(Hardware("light"), "300");
  Replace("eth0.ini", "[link]\nup = yes\n[address]\nip = 10.0.0.1\n");
  queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
  queue.Drain();
  EXPECT_EQ(queue.Take(), "changed");
}

// A socket for notices, as a program of its own would have it.
class Notices : public InterfaceNews {
 protected:
  Notices() : socket_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)) {
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK;
    EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  }
  ~Notices() override { close(socket_); }

  int socket_;
};

TEST_F(Notices, NameEachInterfaceWithItsFlags) {
  EXPECT_EQ(recv(socket_, nullptr, 0, MSG_DONTWAIT), -1);
  EXPECT_EQ(errno, EAGAIN);
  std::thread later([] { WriteFile(Hardware("eth0.ini"), "[link]\nup = yes\ncable = plugged\n"); });
  alignas(nlmsghdr) char buffer[4096];
  sockaddr_nl from{};
  socklen_t length = sizeof(from);
  ssize_t received =
      recvfrom(socket_, buffer, sizeof(buffer), 0, reinterpret_cast<sockaddr*>(&from), &length);
  later.join();
  EXPECT_EQ(from.nl_pid, 0U);
  std::string text;
  for (auto* message = reinterpret_cast<nlmsghdr*>(buffer); NLMSG_OK(message, static_cast<size_t>(received));
       message = NLMSG_NEXT(message, received)) {
    EXPECT_EQ(message->nlmsg_type, RTM_NEWLINK);
    const auto* link = static_cast<const ifinfomsg*>(NLMSG_DATA(message));
    const auto* name = IFLA_RTA(link);
    text += std::string(static_cast<const char*>(RTA_DATA(name))) + " " + std::to_string(link->ifi_index) +
            " " + std::to_string(link->ifi_flags & 0x41) + "\n";
  }
  EXPECT_EQ(text, "lo 1 65\neth0 2 65\nra0 3 0\n");
}

TEST_F(Notices, AreCutToTheBuffer) {
  WriteFile(Hardware("eth0.ini"), "");
  char small[8];
  EXPECT_EQ(recv(socket_, small, sizeof(small), 0), 8);
}

TEST_F(Notices, ASocketThatHasJoinedNothingHearsNothing) {
  const int quiet = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  EXPECT_EQ(bind(quiet, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  WriteFile(Hardware("eth0.ini"), "");
  char buffer[64];
  EXPECT_EQ(recv(quiet, buffer, sizeof(buffer), 0), -1);
  EXPECT_EQ(errno, EAGAIN);
  close(quiet);
}

TEST_F(Notices, NoSocketReachesTheMachinesInterfaces) {
  char request[sizeof(nlmsghdr) + sizeof(ifinfomsg)] = {};
  EXPECT_EQ(send(socket_, request, sizeof(request), 0), -1);
  EXPECT_EQ(socket(AF_PACKET, SOCK_RAW, 0), -1);
  EXPECT_EQ(errno, EAFNOSUPPORT);
}

}  // namespace
