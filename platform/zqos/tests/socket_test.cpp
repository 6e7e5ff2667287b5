// TCP clients whose connection is reported to a queue, against real servers on this machine.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <latch>
#include <string>

#include "loopback_listener.h"
#include "recording_queue.h"
#include "zq_msgq.h"
#include "zq_socket.h"

namespace {

using Mode = LoopbackListener::Mode;

constexpr uint32_t kBlock = 1000;
constexpr uint32_t kMarker = 1001;

class SocketTest : public testing::Test {
 protected:
  uint32_t Open(const char* address, uint16_t port) {
    return zq_SocketOpenTcpClient(queue.Handle(), address, port, __FILE__, __LINE__);
  }
  uint32_t Connect() {
    const uint32_t socket = Open("127.0.0.1", server.Port());
    EXPECT_NE(socket, 0U);
    queue.Await(ZQ_MSG_SOCKET_CONNECTED, 1);
    return socket;
  }
  // What was reported until now and is still to come, and no more.
  std::string Reports() {
    // The queue looks at its sockets between the two.
    for (size_t i = 1; i <= 2; ++i) {
      Post(queue.Handle(), kMarker);
      queue.Await(kMarker, i);
    }
    queue.Drain();
    return queue.Take();
  }
  static std::string Connected(uint32_t socket) { return "512:" + std::to_string(socket) + ":0"; }
  static std::string Failed(uint32_t socket) { return "516:" + std::to_string(socket) + ":0"; }

  void SetUp() override { queue.Start(); }

  LoopbackListener server;
  std::latch firstInHand{1}, secondInHand{2}, first{1}, second{1};
  RecordingQueue queue{[this](const MSG_COMMON& message) {
                         if (message.type != kBlock) return;
                         (message.param1 == 1 ? firstInHand : secondInHand).count_down();
                         (message.param1 == 1 ? first : second).wait();
                       },
                       [](const MSG_COMMON& message) {
                         const bool report =
                             message.type == ZQ_MSG_SOCKET_CONNECTED || message.type == ZQ_MSG_SOCKET_FAILED;
                         if (!report) return std::string();
                         return std::to_string(message.type) + ":" + std::to_string(message.param1) + ":" +
                                std::to_string(message.param2);
                       }};
};

TEST_F(SocketTest, AConnectionIsReportedAndItsDescriptorCarriesBytes) {
  const uint32_t socket = Connect();
  const int peer = server.Accept();
  const int fd = zq_SocketDescriptor(socket);
  EXPECT_NE(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
  EXPECT_NE(fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
  ASSERT_EQ(send(fd, "ping", 4, MSG_NOSIGNAL), 4);
  char bytes[5] = "";
  ASSERT_EQ(recv(peer, bytes, 4, MSG_WAITALL), 4);
  EXPECT_STREQ(bytes, "ping");
  EXPECT_EQ(Reports(), Connected(socket));
  zq_SocketClose(socket);
  EXPECT_EQ(recv(peer, bytes, 1, 0), 0) << "closed";
  close(peer);
}

TEST_F(SocketTest, SixIsAsGoodAsFour) {
  LoopbackListener six("::1");
  const uint32_t socket = Open("::1", six.Port());
  queue.Await(ZQ_MSG_SOCKET_CONNECTED, 1);
  EXPECT_EQ(Reports(), Connected(socket));
  zq_SocketClose(socket);
}

TEST_F(SocketTest, ARefusedConnectionFailsOnce) {
  LoopbackListener nobody("127.0.0.1", Mode::kRefusing);
  const uint32_t socket = Open("127.0.0.1", nobody.Port());
  ASSERT_NE(socket, 0U);
  queue.Await(ZQ_MSG_SOCKET_FAILED, 1);
  EXPECT_EQ(Reports(), Failed(socket));
  zq_SocketClose(socket);
}

TEST_F(SocketTest, AConnectionThatThePeerClosesLaterFailsOnceAndItsBytesCanStillBeRead) {
  const uint32_t socket = Connect();
  const int peer = server.Accept();
  ASSERT_EQ(send(peer, "bye", 3, 0), 3);
  close(peer);
  queue.Await(ZQ_MSG_SOCKET_FAILED, 1);
  char bytes[4] = "";
  EXPECT_EQ(recv(zq_SocketDescriptor(socket), bytes, 3, 0), 3);
  EXPECT_STREQ(bytes, "bye");
  EXPECT_EQ(Reports(), Connected(socket) + "," + Failed(socket));
  zq_SocketClose(socket);
}

TEST_F(SocketTest, AConnectionThatIsResetFailsOnce) {
  const uint32_t socket = Connect();
  Reset(server.Accept());
  queue.Await(ZQ_MSG_SOCKET_FAILED, 1);
  EXPECT_EQ(Reports(), Connected(socket) + "," + Failed(socket));
  zq_SocketClose(socket);
}

TEST_F(SocketTest, BytesThatNobodyReadsAreNoReport) {
  const uint32_t socket = Connect();
  const int peer = server.Accept();
  ASSERT_EQ(send(peer, "unread", 6, 0), 6);
  const int fd = zq_SocketDescriptor(socket);
  char byte = 0;
  while (recv(fd, &byte, 1, MSG_PEEK) < 0) {
  }
  EXPECT_EQ(Reports(), Connected(socket));
  close(peer);
  zq_SocketClose(socket);
}

// The thread looks at its sockets between two messages; the second message was posted before the report, so
// the report waits behind it when the socket is closed.
TEST_F(SocketTest, AReportThatWaitsDoesNotComeAfterClose) {
  Post(queue.Handle(), kBlock, 1);
  firstInHand.wait();
  Post(queue.Handle(), kBlock, 2);
  const uint32_t socket = Open("127.0.0.1", server.Port());
  const int peer = server.Accept();
  first.count_down();
  secondInHand.count_down();
  secondInHand.wait();
  EXPECT_EQ(zq_MsgQPending(queue.Handle()), 2U) << "the second in hand, and the report";
  zq_SocketClose(socket);
  EXPECT_EQ(zq_MsgQPending(queue.Handle()), 1U);
  second.count_down();
  EXPECT_EQ(Reports(), "");
  close(peer);
}

TEST_F(SocketTest, ASocketClosedBeforeTheQueueLooksIsNotReported) {
  Post(queue.Handle(), kBlock, 1);
  firstInHand.wait();
  const uint32_t socket = Open("127.0.0.1", server.Port());
  close(server.Accept());
  zq_SocketClose(socket);
  first.count_down();
  EXPECT_EQ(Reports(), "");
}

TEST_F(SocketTest, AFailureKnownAtOnceIsForgottenWithItsSocket) {
  LoopbackListener nobody("127.0.0.1", Mode::kRefusing);
  Post(queue.Handle(), kBlock, 1);
  firstInHand.wait();
  zq_SocketClose(Open("127.0.0.1", nobody.Port()));
  first.count_down();
  EXPECT_EQ(Reports(), "");
}

TEST_F(SocketTest, AHandlerMayCloseTheSocketItHearsOf) {
  RecordingQueue closing([](const MSG_COMMON& message) { zq_SocketClose(message.param1); });
  closing.Start();
  const uint32_t socket =
      zq_SocketOpenTcpClient(closing.Handle(), "127.0.0.1", server.Port(), __FILE__, __LINE__);
  closing.Await(ZQ_MSG_SOCKET_CONNECTED, 1);
  close(server.Accept());
  EXPECT_EQ(zq_SocketDescriptor(socket), -1);
  closing.Drain();
  EXPECT_EQ(closing.Count(ZQ_MSG_SOCKET_FAILED), 0U);
}

TEST_F(SocketTest, HandlesThatAreGoneAreIgnored) {
  const uint32_t socket = Connect();
  zq_SocketClose(socket);
  zq_SocketClose(socket);
  zq_SocketClose(0);
  EXPECT_EQ(zq_SocketDescriptor(socket), -1);
  EXPECT_EQ(zq_SocketDescriptor(0), -1);
  zq_SocketSetName(socket, "late");
  zq_SocketSetReceiveLimit(socket, 1);
  const uint32_t next = Open("127.0.0.1", server.Port());
  EXPECT_NE(next, socket);
  zq_SocketClose(next);
}

TEST_F(SocketTest, WhatIsNoAddressIsImpossible) {
  for (const char* const address : {"", "localhost", "1.2.3", "1.2.3.256", "::g", " 127.0.0.1"}) {
    EXPECT_EQ(Open(address, server.Port()), 0U) << address;
  }
  EXPECT_EQ(Open(nullptr, server.Port()), 0U);
  EXPECT_EQ(Open("127.0.0.1", 0), 0U);
}

TEST_F(SocketTest, AQueueThatIsGoneOrDrainedTakesNoSocket) {
  const uint32_t gone = queue.Handle();
  queue.Drain();
  EXPECT_EQ(Open("127.0.0.1", server.Port()), 0U);
  queue.Destroy(false);
  EXPECT_EQ(zq_SocketOpenTcpClient(gone, "127.0.0.1", server.Port(), __FILE__, __LINE__), 0U);
  EXPECT_EQ(zq_SocketOpenTcpClient(0, "127.0.0.1", server.Port(), __FILE__, __LINE__), 0U);
}

TEST_F(SocketTest, ASocketStaysItsOwnersWhenItsQueueEnds) {
  const uint32_t socket = Connect();
  const int peer = server.Accept();
  queue.Destroy(true);
  EXPECT_EQ(send(zq_SocketDescriptor(socket), "x", 1, MSG_NOSIGNAL), 1);
  close(peer);
  zq_SocketClose(socket);
  EXPECT_EQ(zq_SocketDescriptor(socket), -1);
}

// The kernel keeps twice the figure, for its own book-keeping.
TEST_F(SocketTest, TheReceiveLimitIsTheSystems) {
  const uint32_t socket = Connect();
  zq_SocketSetName(socket, "limited");
  zq_SocketSetName(socket, nullptr);
  zq_SocketSetReceiveLimit(socket, 8192);
  int limit = 0;
  socklen_t size = sizeof limit;
  ASSERT_EQ(getsockopt(zq_SocketDescriptor(socket), SOL_SOCKET, SO_RCVBUF, &limit, &size), 0);
  EXPECT_EQ(limit, 2 * 8192);
  zq_SocketClose(socket);
}

std::string Lookup(const char* host) {
  char address[ZQ_ADDRESS_TEXT] = "not touched";
  const bool found = zq_SocketLookup(host, address);
  EXPECT_EQ(found, address[0] != '\0');
  return address;
}

TEST(SocketLookupTest, AnAddressIsItsOwnText) {
  EXPECT_EQ(Lookup("127.0.0.1"), "127.0.0.1");
  EXPECT_EQ(Lookup("::1"), "::1");
  EXPECT_EQ(Lookup("2001:0db8:0000:0000:0000:0000:0000:0001"), "2001:db8::1");
}

TEST(SocketLookupTest, ANameWithBothKindsGivesTheFour) {
  EXPECT_EQ(Lookup("localhost"), "127.0.0.1");
}

TEST(SocketLookupTest, WhatCannotBeAHostIsNotFound) {
  EXPECT_EQ(Lookup(nullptr), "");
  EXPECT_EQ(Lookup(""), "");
  EXPECT_EQ(Lookup(std::string(300, 'x').c_str()), "");
}

}  // namespace
