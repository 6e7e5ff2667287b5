#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <future>
#include <memory>
#include <optional>
#include <string>

#include "trace_capture.h"
#include "www_fixture.h"
#include "zq_memory.h"
#include "zqwww.h"

namespace {

constexpr int kTcp = 6;

// What the system's OpenSSL permits is not what refuses old protocols here.
const bool g_lenient = setenv("OPENSSL_CONF", LENIENT_OPENSSL_CONF, 1) == 0;

constexpr char kPlaceholder[] = "https://00/zqapplog/updateReq?mac=a%20b";

using testing::ElementsAre;
using testing::HasSubstr;

std::optional<std::string> Text(char* answer) {
  if (answer == nullptr) return std::nullopt;
  std::string text = answer;
  zq__free(answer, __FILE__, __LINE__);
  return text;
}

class SslHttpTest : public WwwTest {
 protected:
  static ServerSetting Tls() { return {.identity = &Server()}; }
  // What a GET brings from a server that says this.
  static std::optional<std::string> Get(const std::string& answer) {
    TestServer server(answer, Tls());
    return GetFrom(server);
  }
  static std::optional<std::string> GetFrom(TestServer& server) {
    SSLHTTP http;
    EXPECT_TRUE(http.Connect(kTcp, "127.0.0.1", server.Port()));
    return Text(http.SendBody(nullptr, kPlaceholder, true));
  }
  static bool Connects(const Identity& identity, const char* host = "127.0.0.1") {
    TestServer server(Ok(""), {.identity = &identity});
    SSLHTTP http;
    return http.Connect(kTcp, host, server.Port());
  }
};

TEST_F(SslHttpTest, AGetCarriesPathQueryHostAndHeadersAndBringsTheBody) {
  TestServer server(Ok("<xml/>"), Tls());
  SSLHTTP http;
  EXPECT_TRUE(http.AddHeader("User-Agent", "Brimvale RSS transport layer"));
  EXPECT_TRUE(http.AddHeader("Proxy-Connection", "Keep-Alive"));
  ASSERT_TRUE(http.Connect(kTcp, "localhost", server.Port()));
  EXPECT_EQ(Text(http.SendBody(nullptr, kPlaceholder, true)), "<xml/>");
  EXPECT_THAT(
      server.Requests(),
      ElementsAre(
          "GET /zqapplog/updateReq?mac=a%20b HTTP/1.1\r\nHost: localhost:" + std::to_string(server.Port()) +
          "\r\nUser-Agent: Brimvale RSS transport layer\r\nProxy-Connection: Keep-Alive\r\n\r\n"));
}

TEST_F(SslHttpTest, ABodyIsPosted) {
  TestServer server(Ok("taken"), Tls());
  SSLHTTP http;
  http.AddHeader("MAC-Addr", "00:11:22:33:44:55");
  ASSERT_TRUE(http.Connect(kTcp, "127.0.0.1", server.Port()));
  EXPECT_EQ(Text(http.SendBody("a=1&b=2", "https://00/x", true)), "taken");
  EXPECT_THAT(server.Requests(),
              ElementsAre("POST /x HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.Port()) +
                          "\r\nContent-Type: application/x-www-form-urlencoded\r\nContent-Length: 7\r\n"
                          "MAC-Addr: 00:11:22:33:44:55\r\n\r\na=1&b=2"));
}

TEST_F(SslHttpTest, ARequestKeepsItsBytesAndGetsTheHeadersBeforeItsEmptyLine) {
  TestServer server(Ok(""), Tls());
  SSLHTTP http;
  http.AddHeader("Accept", "text/xml");
  ASSERT_TRUE(http.Connect(kTcp, "127.0.0.1", server.Port()));
  EXPECT_EQ(Text(http.Send("POST /p HTTP/1.1\r\nContent-Type:a/b\r\nContent-Length: 6\r\n\r\nx\r\n\r\ny")),
            "");
  EXPECT_THAT(server.Requests(), ElementsAre("POST /p HTTP/1.1\r\nContent-Type:a/b\r\nContent-Length: 6\r\n"
                                             "Accept: text/xml\r\n\r\nx\r\n\r\ny"));
}

TEST_F(SslHttpTest, ARequestThatNobodyWaitsForIsSent) {
  std::promise<std::string> heard;
  TestServer server([&](Conversation& client) { heard.set_value(client.ReadRequest()); }, Tls());
  SSLHTTP http;
  ASSERT_TRUE(http.Connect(kTcp, "127.0.0.1", server.Port()));
  EXPECT_EQ(http.SendBody("x", "https://00/x", false), nullptr);
  EXPECT_THAT(heard.get_future().get(), HasSubstr("POST /x HTTP/1.1\r\n"));
}

TEST_F(SslHttpTest, AConnectionServesOneExchangeAndAnObjectMany) {
  TestServer server(Ok("again"), Tls());
  SSLHTTP http;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(http.Connect(kTcp, "127.0.0.1", server.Port()));
    EXPECT_EQ(Text(http.SendBody(nullptr, kPlaceholder, true)), "again");
    EXPECT_EQ(http.SendBody(nullptr, kPlaceholder, true), nullptr);
    EXPECT_EQ(http.Send("GET / HTTP/1.1\r\n\r\n"), nullptr);
  }
  EXPECT_EQ(server.Connections(), 3);
}

TEST_F(SslHttpTest, OnlyTcpAndServersThatCanBeAreConnectedTo) {
  TestServer server(Ok(""), Tls());
  SSLHTTP http;
  for (const int protocol : {0, 1, 17, -6}) EXPECT_FALSE(http.Connect(protocol, "127.0.0.1", server.Port()));
  for (const int port : {0, -1, 65536, 1 << 20}) EXPECT_FALSE(http.Connect(kTcp, "127.0.0.1", port));
  for (const char* host :
       {"", " ", "a b", "a/b", "a@127.0.0.1", "127.0.0.1#", "127.0.0.1?", "a\r\nb", "%41", "::x"}) {
    EXPECT_FALSE(http.Connect(kTcp, host, server.Port())) << host;
  }
  EXPECT_FALSE(http.Connect(kTcp, nullptr, server.Port()));
  EXPECT_EQ(http.SendBody(nullptr, kPlaceholder, true), nullptr) << "there is no connection";
  EXPECT_EQ(server.Connections(), 0);
}

TEST_F(SslHttpTest, HeadersThatWouldBreakTheRequestAreRefused) {
  SSLHTTP http;
  EXPECT_FALSE(http.AddHeader("A", "b\r\nC: d"));
  EXPECT_FALSE(http.AddHeader("A", "b\n"));
  EXPECT_FALSE(http.AddHeader("A:", "b"));
  EXPECT_FALSE(http.AddHeader("A b", "c"));
  EXPECT_FALSE(http.AddHeader("", "b"));
  EXPECT_FALSE(http.AddHeader(nullptr, "b"));
  EXPECT_FALSE(http.AddHeader("A", nullptr));
  EXPECT_FALSE(http.AddHeader("host", "elsewhere"));
  EXPECT_FALSE(http.AddHeader("Content-length", "7"));
  EXPECT_FALSE(http.AddHeader("Transfer-Encoding", "chunked"));
  EXPECT_TRUE(http.AddHeader("A", ""));
}

TEST_F(SslHttpTest, RequestsThatAreNoneAreNotSent) {
  TestServer server(Ok(""), Tls());
  SSLHTTP http;
  ASSERT_TRUE(http.Connect(kTcp, "127.0.0.1", server.Port()));
  EXPECT_EQ(http.Send(nullptr), nullptr);
  EXPECT_EQ(http.SendBody(nullptr, nullptr, true), nullptr);
  EXPECT_EQ(http.SendBody(nullptr, "nonsense", true), nullptr);
  EXPECT_EQ(http.Send("GET / HTTP/1.1\r\n"), nullptr);
  EXPECT_TRUE(server.Requests().empty());
}

TEST_F(SslHttpTest, OnlyTheServerThatProvesItsNameIsConnectedTo) {
  EXPECT_TRUE(Connects(Server()));
  EXPECT_TRUE(Connects(Server(), "localhost"));
  const TraceCapture trace;
  EXPECT_FALSE(Connects(MakeIdentity({.names = "DNS:elsewhere.example"}, &Authority()))) << "wrong name";
  EXPECT_FALSE(Connects(MakeIdentity({.names = "DNS:localhost"}, &Authority()))) << "wrong address";
  EXPECT_FALSE(Connects(MakeIdentity({.fromNow = -7200, .untilNow = -3600}, &Authority()))) << "expired";
  EXPECT_FALSE(Connects(MakeIdentity({.fromNow = 3600}, &Authority()))) << "not yet valid";
  EXPECT_FALSE(Connects(MakeIdentity({}, nullptr))) << "self-signed";
  const Identity stranger = MakeAuthority();
  EXPECT_FALSE(Connects(MakeIdentity({}, &stranger))) << "an authority that is not trusted";
  const std::string said = trace.Raw();
  EXPECT_THAT(said, HasSubstr("certificate has expired"));
  EXPECT_THAT(said, HasSubstr("self-signed certificate"));
}

TEST_F(SslHttpTest, WithoutTheExtraFileTheAuthorityIsAStranger) {
  const EnvironmentSetting none("ZQ_CA_FILE", nullptr);
  EXPECT_FALSE(Connects(Server()));
}

TEST_F(SslHttpTest, AnExtraFileThatCannotBeReadTrustsNobodyMore) {
  const EnvironmentSetting gone("ZQ_CA_FILE", (folder_ / "gone.pem").c_str());
  const TraceCapture trace;
  EXPECT_FALSE(Connects(Server()));
  EXPECT_TRUE(trace.Has("no certificates to trust in " + (folder_ / "gone.pem")));
}

TEST_F(SslHttpTest, TlsBelowOneDotTwoIsRefused) {
  TestServer old(Ok(""), {.identity = &Server(), .newestTls = TLS1_1_VERSION});
  TestServer good(Ok(""), {.identity = &Server(), .newestTls = TLS1_2_VERSION});
  SSLHTTP http;
  EXPECT_FALSE(http.Connect(kTcp, "127.0.0.1", old.Port()));
  EXPECT_TRUE(http.Connect(kTcp, "127.0.0.1", good.Port()));
}

TEST_F(SslHttpTest, APlainServerIsRefused) {
  TestServer server([](Conversation& client) { client.Write(Ok("plain")); });
  SSLHTTP http;
  EXPECT_FALSE(http.Connect(kTcp, "127.0.0.1", server.Port()));
}

TEST_F(SslHttpTest, AClosedPortIsRefusedAtOnce) {
  const LoopbackListener closed("127.0.0.1", LoopbackListener::Mode::kRefusing);
  SSLHTTP http;
  EXPECT_FALSE(http.Connect(kTcp, "127.0.0.1", closed.Port()));
}

TEST_F(SslHttpTest, AServerThatPrefersHttp2SpeaksHttp1) {
  TestServer server(Ok("one"), {.identity = &Server(), .wantsHttp2 = true});
  EXPECT_EQ(GetFrom(server), "one");
}

TEST_F(SslHttpTest, AnswersOfEveryFramingAreRead) {
  EXPECT_EQ(Get(Ok("body")), "body");
  EXPECT_EQ(Get("HTTP/1.1 204 No Content\r\n\r\n"), "");
  EXPECT_EQ(Get("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n1;x=y\r\nc\r\n0\r\n\r\n"),
            "abc");
  EXPECT_EQ(Get("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\n" + Ok("late")),
            "late");
  EXPECT_EQ(Get("HTTP/1.0 200 OK\r\n\r\nuntil the end"), "until the end");
  EXPECT_EQ(Get(Ok("body") + "and more than it declared"), "body");
}

TEST_F(SslHttpTest, OnlySuccessIsAnAnswer) {
  for (const char* status :
       {"404 Not Found", "302 Found", "500 Internal Server Error", "206 Partial Content", "304 Not Modified",
        "101 Switching Protocols", "199 ?", "300 Multiple Choices"}) {
    EXPECT_EQ(
        Get(std::string("HTTP/1.1 ") + status + "\r\nLocation: /else\r\nContent-Length: 5\r\n\r\nerror"),
        std::nullopt)
        << status;
  }
}

TEST_F(SslHttpTest, ACutOrDamagedAnswerIsNone) {
  const char* const answers[] = {
      "",
      "HTTP/1.1 200",
      "HTTP/1.1 200 OK\r\nContent-Le",
      "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n",
      "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nabcd",
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabcde\r\n",
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\nabcde\r\n0\r\n\r\n",
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabcdefg\r\n0\r\n\r\n",
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n\r\nabc",
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip, chunked\r\n\r\n1\r\na\r\n0\r\n\r\n",
      "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\n0\r\n\r\n",
      "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Length: 4\r\n\r\nabcde",
      "HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\nabcde",
      "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999999\r\n\r\nabcde",
      "HTTP/1.1 200 OK\nContent-Length: 5\n\nabcde",
      "HTTP/2 200\r\ncontent-length: 5\r\n\r\nabcde",
      "<html>not HTTP at all</html>",
      "\x00\x00\x12\x04",
  };
  for (const char* answer : answers) EXPECT_EQ(Get(answer), std::nullopt) << answer;
}

TEST_F(SslHttpTest, ABodyThatEndsWithACutConnectionIsNone) {
  TestServer server(
      [](Conversation& client) {
        client.ReadRequest();
        client.Write("HTTP/1.1 200 OK\r\n\r\nhalf of it");
        client.Cut();
      },
      Tls());
  EXPECT_EQ(GetFrom(server), std::nullopt);
}

TEST_F(SslHttpTest, AnswersBeyondTheLimitsAreNone) {
  const std::string eight(8 << 20, 'x');
  EXPECT_EQ(Get(Ok(eight)).value_or("").size(), eight.size());
  EXPECT_EQ(Get(Ok(eight + "x")), std::nullopt);
  EXPECT_EQ(Get(Ok(std::string(10 << 20, 'x'))), std::nullopt);
  EXPECT_EQ(Get("HTTP/1.0 200 OK\r\n\r\n" + eight + "x"), std::nullopt);
  EXPECT_EQ(Get("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n800001\r\n" + eight + "x\r\n0\r\n\r\n"),
            std::nullopt);
  EXPECT_EQ(Get("HTTP/1.1 200 OK\r\nA: " + std::string(70000, 'a') + "\r\nContent-Length: 0\r\n\r\n"),
            std::nullopt);
  std::string fields;
  for (int i = 0; i < 10000; ++i) fields += "Field: value\r\n";
  EXPECT_EQ(Get("HTTP/1.1 200 OK\r\n" + fields + "Content-Length: 0\r\n\r\n"), std::nullopt);
}

TEST_F(SslHttpTest, ABodyThatIsNoTextIsNone) {
  EXPECT_EQ(Get(Ok(std::string("a\0b", 3))), std::nullopt);
}

TEST_F(SslHttpTest, GoesThroughATunnelWhenAProxyIsSet) {
  TestServer proxy(Ok("tunnelled"), {.identity = &Server(), .tunnel = true});
  const EnvironmentSetting set("http_proxy", ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  SSLHTTP http;
  http.AddHeader("User-Agent", "ours");
  ASSERT_TRUE(http.Connect(kTcp, "localhost", 4711));
  EXPECT_EQ(Text(http.SendBody(nullptr, kPlaceholder, true)), "tunnelled");
  const auto requests = proxy.Requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_THAT(requests[0], HasSubstr("CONNECT localhost:4711 HTTP/1.1\r\nHost: localhost:4711\r\n"));
  EXPECT_EQ(requests[1],
            "GET /zqapplog/updateReq?mac=a%20b HTTP/1.1\r\nHost: localhost:4711\r\nUser-Agent: ours\r\n\r\n");
}

TEST_F(SslHttpTest, ATunnelDoesNotMakeAServerMoreTrusted) {
  const Identity other = MakeIdentity({.names = "DNS:elsewhere.example"}, &Authority());
  TestServer proxy(Ok("tunnelled"), {.identity = &other, .tunnel = true});
  const EnvironmentSetting set("http_proxy", ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  SSLHTTP http;
  EXPECT_FALSE(http.Connect(kTcp, "localhost", 4711));
}

TEST_F(SslHttpTest, AProxyThatRefusesTheTunnelIsNoConnection) {
  TestServer proxy("HTTP/1.1 407 Proxy Authentication Required\r\nContent-Length: 0\r\n\r\n");
  const EnvironmentSetting set("http_proxy", ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  SSLHTTP http;
  EXPECT_FALSE(http.Connect(kTcp, "localhost", 4711));
}

TEST_F(SslHttpTest, AProxyThatCannotBeReadIsNotPassedBy) {
  TestServer server(Ok("direct"), Tls());
  const EnvironmentSetting set("http_proxy", "http://:8080");
  const TraceCapture trace;
  SSLHTTP http;
  EXPECT_FALSE(http.Connect(kTcp, "127.0.0.1", server.Port()));
  EXPECT_TRUE(trace.Has("127.0.0.1:" + std::to_string(server.Port()) + ": http_proxy names no proxy"));
  EXPECT_EQ(server.Connections(), 0);
}

TEST_F(SslHttpTest, TheLibrarysOwnProxyVariablesAreNotRead) {
  TestServer server(Ok("direct"), Tls());
  const EnvironmentSetting https("https_proxy", "http://127.0.0.1:1");
  const EnvironmentSetting all("ALL_PROXY", "http://127.0.0.1:1");
  EXPECT_EQ(GetFrom(server), "direct");
  TestServer proxy(Ok("tunnelled"), {.identity = &Server(), .tunnel = true});
  const EnvironmentSetting set("http_proxy", ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  const EnvironmentSetting none("NO_PROXY", "*");
  EXPECT_EQ(GetFrom(server), "tunnelled");
}

TEST_F(SslHttpTest, AServerThatHangsUpWhileItIsToldMuchDoesNotEndTheProcess) {
  // As in a host that leaves the signal alone.
  struct sigaction deadly {};
  deadly.sa_handler = SIG_DFL;
  struct sigaction before {};
  sigaction(SIGPIPE, &deadly, &before);
  TestServer server([](Conversation& client) { client.ResetNow(); }, Tls());
  const std::string much(4 << 20, 'x');
  for (int i = 0; i < 5; ++i) {
    SSLHTTP http;
    if (http.Connect(kTcp, "127.0.0.1", server.Port())) {
      EXPECT_EQ(http.SendBody(much.c_str(), kPlaceholder, true), nullptr);
    }
  }
  sigaction(SIGPIPE, &before, nullptr);
}

TEST_F(SslHttpTest, IsDestroyedWithAConnectionOpen) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); }, Tls());
  auto http = std::make_unique<SSLHTTP>();
  ASSERT_TRUE(http->Connect(kTcp, "127.0.0.1", server.Port()));
  http.reset();
}

}  // namespace
