#include "connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

#include "blackhole.h"
#include "trace_capture.h"
#include "www_fixture.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kShort{150};

class ConnectionTest : public WwwTest {
 protected:
  static UrlParts Local(int port, bool tls = false) { return *ServerParts(tls, "127.0.0.1", port); }
  static bool Open(Connection& connection, int port, bool tls = false) {
    return connection.Open(Local(port, tls), {}, ReadTrust());
  }
  static Limits Short() { return {.connect = kShort, .idle = kShort}; }
};

TEST_F(ConnectionTest, AConnectionThatDoesNotStandInTimeIsGivenUp) {
  const Blackhole blackhole;
  const TraceCapture trace;
  Connection connection(Short(), nullptr);
  const auto begun = Clock::now();
  EXPECT_FALSE(Open(connection, blackhole.Port()));
  EXPECT_GE(Clock::now() - begun, kShort);
  EXPECT_EQ(trace.Texts().size(), 1U);
}

TEST_F(ConnectionTest, AHandshakeThatDoesNotEndInTimeIsGivenUp) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); });
  Connection connection(Short(), nullptr);
  EXPECT_FALSE(Open(connection, server.Port(), true));
}

TEST_F(ConnectionTest, ATunnelThatIsNotDugInTimeIsGivenUp) {
  TestServer proxy([](Conversation& client) { client.AwaitEnd(); });
  Connection connection(Short(), nullptr);
  EXPECT_FALSE(connection.Open(*ServerParts(true, "localhost", 1),
                               {Route::Way::kProxy, "127.0.0.1", proxy.Port()}, ReadTrust()));
}

TEST_F(ConnectionTest, ASilentServerIsGivenUp) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); });
  const TraceCapture trace;
  Connection connection({.idle = kShort}, nullptr);
  ASSERT_TRUE(Open(connection, server.Port()));
  EXPECT_TRUE(connection.Send("x", 1));
  char byte = 0;
  EXPECT_EQ(connection.Receive(&byte, 1), -1);
  EXPECT_TRUE(trace.Has("127.0.0.1:" + std::to_string(server.Port()) + ": the server keeps us waiting"));
}

TEST_F(ConnectionTest, AServerThatReadsNothingIsGivenUp) {
  std::promise<void> over;
  TestServer server([&](Conversation&) { over.get_future().wait(); });
  Connection connection({.idle = kShort}, nullptr);
  ASSERT_TRUE(Open(connection, server.Port()));
  const std::string much(64 << 20, 'x');
  EXPECT_FALSE(connection.Send(much.data(), much.size()));
  over.set_value();
}

TEST_F(ConnectionTest, AnExchangeThatDripsIsGivenUp) {
  std::atomic<bool> over = false;
  TestServer server([&](Conversation& client) {
    while (!over && client.Write("x")) std::this_thread::sleep_for(milliseconds(1));
  });
  Connection connection({.exchange = kShort}, nullptr);
  const auto begun = Clock::now();  // the limit counts from some moment after this one
  ASSERT_TRUE(Open(connection, server.Port()));
  char byte = 0;
  while (connection.Receive(&byte, 1) > 0) ASSERT_LT(Clock::now() - begun, seconds(30));
  EXPECT_GE(Clock::now() - begun, kShort);
  over = true;
}

TEST_F(ConnectionTest, ACancellationEndsAWaitWithoutATrace) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); });
  const Blackhole blackhole;
  const TraceCapture trace;
  Cancellation cancellation;
  Connection standing({}, &cancellation);
  ASSERT_TRUE(Open(standing, server.Port()));
  auto waiting = std::async(std::launch::async, [&] {
    char byte = 0;
    return standing.Receive(&byte, 1);
  });
  auto connecting = std::async(std::launch::async, [&] {
    Connection other({}, &cancellation);
    return Open(other, blackhole.Port());
  });
  const auto begun = Clock::now();
  cancellation.Request();
  EXPECT_EQ(waiting.get(), -1);
  EXPECT_FALSE(connecting.get());
  EXPECT_LT(Clock::now() - begun, seconds(10));
  EXPECT_EQ(trace.Raw(), "");
}

TEST_F(ConnectionTest, TheSettingsFileSaysWhomToTrust) {
  const std::string settings = folder_ / "zqwww.ini";
  WriteFile(settings, "[tls]\ntrust_store=/store\nextra_ca=/extra.pem\n");
  const Trust both = ReadTrust(settings.c_str(), "/more.pem");
  EXPECT_EQ(both.store, "/store");
  EXPECT_THAT(both.extra, testing::ElementsAre("/extra.pem", "/more.pem"));
  const Trust none = ReadTrust((folder_ / "gone.ini").c_str(), "");
  EXPECT_EQ(none.store, "");
  EXPECT_TRUE(none.extra.empty());
}

TEST_F(ConnectionTest, ATrustStoreTakesTheSystemsPlace) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); }, {.identity = &Server()});
  const auto opens = [&](const Trust& trust) {
    return Connection({}, nullptr).Open(Local(server.Port(), true), {}, trust);
  };
  EXPECT_TRUE(opens({folder_ / "authority.pem", {}}));
  EXPECT_TRUE(opens({"", {folder_ / "authority.pem"}}));
  EXPECT_FALSE(opens({"", {}}));
  EXPECT_FALSE(opens({folder_ / "gone.pem", {}}));
  EXPECT_FALSE(opens({folder_.Path(), {}})) << "a folder without hashed names";
}

}  // namespace
