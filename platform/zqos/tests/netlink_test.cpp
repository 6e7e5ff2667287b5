// Changes of the machine's network interfaces, in a network of the test's own.
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/net.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <latch>
#include <string>
#include <thread>

#include "loopback_listener.h"
#include "recording_queue.h"
#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_msgq.h"
#include "zq_socket.h"

namespace {

constexpr uint32_t kPost = 1000;
constexpr uint32_t kBlock = 1001;

// Runs in a thread of its own, with a network that has nothing but a loopback interface that is down. Threads
// and processes that are started there share it.
void InOwnNetwork(const std::function<void()>& test) {
  std::thread([&test] {
    if (unshare(CLONE_NEWNET) != 0) {
      ADD_FAILURE() << "no network of the test's own (unshare(CLONE_NEWNET)): " << strerror(errno)
                    << "; needs CAP_SYS_ADMIN: run as root, in a container with --cap-add SYS_ADMIN";
      return;
    }
    test();
  }).join();
}

// iproute2's tool, which users have.
void Ip(const std::string& words) {
  ASSERT_EQ(system(("ip " + words).c_str()), 0) << "ip " << words << " (package iproute2)";
}

std::string OnlyInterfaces(const MSG_COMMON& message) {
  return message.type == ZQ_MSG_NEW_INTERFACES ? "changed" : "";
}

TEST(NetlinkTest, AnInterfaceThatGoesUpIsReported) {
  InOwnNetwork([] {
    RecordingQueue queue;
    queue.Start();
    Ip("link set lo up");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
    queue.Drain();
    EXPECT_EQ(queue.Take().substr(0, 7), "517:0:0");
  });
}

TEST(NetlinkTest, AddressesThatComeAndGoAreReportedEach) {
  InOwnNetwork([] {
    Ip("link set lo up");
    RecordingQueue queue({}, OnlyInterfaces);
    queue.Start();
    Ip("address add 192.0.2.1/32 dev lo");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
    Ip("address add 2001:db8::1/128 dev lo nodad");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 2);
    Ip("address del 192.0.2.1/32 dev lo");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 3);
    queue.Drain();
    EXPECT_EQ(queue.Take(), "changed,changed,changed");
  });
}

TEST(NetlinkTest, InterfacesThatComeAndGoAreReported) {
  InOwnNetwork([] {
    RecordingQueue queue;
    queue.Start();
    Ip("link add veth0 type veth peer name veth1");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
    const size_t made = queue.Count(ZQ_MSG_NEW_INTERFACES);
    Ip("link del veth0");
    queue.Await(ZQ_MSG_NEW_INTERFACES, made + 1);
  });
}

// The kernel gives notice of an alias, too; it is neither a name nor an address nor a flag.
TEST(NetlinkTest, ANoticeWithoutAChangeIsNoReport) {
  InOwnNetwork([] {
    RecordingQueue queue({}, OnlyInterfaces);
    queue.Start();
    for (const char* const alias : {"one", "two", "three"}) Ip(std::string("link set lo alias ") + alias);
    Ip("address add 192.0.2.1/32 dev lo");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
    queue.Drain();
    EXPECT_EQ(queue.Take(), "changed");
  });
}

TEST(NetlinkTest, EachQueueHearsOfIt) {
  InOwnNetwork([] {
    RecordingQueue one;
    RecordingQueue two;
    one.Start();
    two.Start();
    Ip("address add 192.0.2.1/32 dev lo");
    one.Await(ZQ_MSG_NEW_INTERFACES, 1);
    two.Await(ZQ_MSG_NEW_INTERFACES, 1);
  });
}

TEST(NetlinkTest, AQueueWithAnOpenSocketHearsOfIt) {
  InOwnNetwork([] {
    Ip("link set lo up");
    LoopbackListener server;
    RecordingQueue queue({}, OnlyInterfaces);
    queue.Start();
    const uint32_t socket =
        zq_SocketOpenTcpClient(queue.Handle(), "127.0.0.1", server.Port(), __FILE__, __LINE__);
    queue.Await(ZQ_MSG_SOCKET_CONNECTED, 1);
    Ip("address add 192.0.2.1/32 dev lo");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
    queue.Drain();
    EXPECT_EQ(queue.Take(), "changed");
    zq_SocketClose(socket);
  });
}

TEST(NetlinkTest, ABusyQueueHearsOfIt) {
  InOwnNetwork([] {
    RecordingQueue queue([](const MSG_COMMON& message) { Post(message.destination, kPost); },
                         [](const MSG_COMMON&) { return ""; });
    queue.Start();
    Ip("address add 192.0.2.1/32 dev lo");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
  });
}

// More notices than the socket's buffer holds: the kernel drops some and says so (ENOBUFS).
TEST(NetlinkTest, AStormWhileTheQueueIsBusyIsOneReportAndTheWatchGoesOn) {
  InOwnNetwork([] {
    std::latch inHand(1);
    std::latch released(1);
    RecordingQueue queue(
        [&](const MSG_COMMON& message) {
          if (message.type != kBlock) return;
          inHand.count_down();
          released.wait();
        },
        OnlyInterfaces);
    queue.Start();
    Post(queue.Handle(), kBlock);
    inHand.wait();
    const TempDir folder;
    std::string batch;
    for (int i = 0; i < 2000; ++i) {
      batch +=
          "address add 10.1." + std::to_string(i / 250) + "." + std::to_string(i % 250 + 1) + "/32 dev lo\n";
    }
    WriteFile(folder / "batch", batch);
    Ip("-batch " + folder / "batch");
    released.count_down();
    queue.Await(ZQ_MSG_NEW_INTERFACES, 1);
    Ip("address add 192.0.2.1/32 dev lo");
    queue.Await(ZQ_MSG_NEW_INTERFACES, 2);
    queue.Drain();
    EXPECT_EQ(queue.Take(), "changed,changed");
  });
}

// Runs in a thread of its own for which, as in a sandbox, a system call with this first argument fails;
// threads that are started there share that.
void WithoutCall(uint32_t call, uint32_t argument, uint32_t error, const std::function<void()>& test) {
  std::thread([&] {
    sock_filter rules[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, argument, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{std::size(rules), rules};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
      ADD_FAILURE() << "no system call filter (seccomp): " << strerror(errno);
      return;
    }
    test();
  }).join();
}

TEST(NetlinkTest, AQueueThatCannotWatchSaysSoAndWorks) {
  const TraceCapture trace;
#ifdef SYS_socketcall
  constexpr uint32_t kCall = SYS_socketcall;  // one call for all of them, by number
  constexpr uint32_t kArgument = SYS_SOCKET;
#else
  constexpr uint32_t kCall = SYS_socket;
  constexpr uint32_t kArgument = AF_NETLINK;
#endif
  WithoutCall(kCall, kArgument, EAFNOSUPPORT, [] {
    RecordingQueue queue;
    queue.Start();
    Post(queue.Handle(), kPost);
    queue.Drain();
    EXPECT_EQ(queue.Take(), "1000:0:0");
  });
  EXPECT_TRUE(trace.Has(
      "changes of the network interfaces cannot be watched: Address family not supported by protocol"));
}

void ExpectNoQueueWithout(uint32_t call, uint32_t argument) {
  const TraceCapture trace;
  RecordingQueue queue;
  WithoutCall(call, argument, EMFILE, [&queue] { EXPECT_FALSE(queue.Create("poor", 0)); });
  EXPECT_EQ(queue.Handle(), 0U);
  EXPECT_TRUE(trace.Has("no descriptors for queue poor"));
  EXPECT_TRUE(queue.Create("poor", 0)) << "later it is";
}

TEST(NetlinkTest, AQueueWithoutDescriptorsIsNotCreatedAndSaysSo) {
  ExpectNoQueueWithout(SYS_epoll_create1, EPOLL_CLOEXEC);
  ExpectNoQueueWithout(SYS_eventfd2, 0);
}

}  // namespace
