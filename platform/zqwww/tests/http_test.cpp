#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include "blackhole.h"
#include "trace_capture.h"
#include "www_fixture.h"
#include "zqwww.h"

namespace {

using testing::ElementsAre;

// What its callbacks heard. Data calls that follow each other are one event with the last one's numbers.
class Download : public HTTP {
 public:
  ~Download() override { close(); }

  // The exchange of one GET, to its end.
  int Begin(const std::string& url) {
    const zq_URL parts(url.c_str());
    return connect(&parts, &OnData, &OnError, nullptr, &OnConnected, &OnDisconnected, 0);
  }
  void Await() { over_.get_future().wait(); }
  std::string Events() const { return events_ + data_; }
  const std::string& Body() const { return body_; }
  size_t LargestChunk() const { return largest_; }

  std::atomic<bool> sends = true;
  std::function<void()> onData = [] {};
  std::function<void()> onConnected = [] {};
  std::promise<void> firstData;

 private:
  static void OnConnected(HTTP* http) {
    auto& self = static_cast<Download&>(*http);
    self.Add("connected");
    if (self.sends) {
      const std::string request = std::string("GET ") + http->url()->requestTarget() +
                                  " HTTP/1.1\r\nHost: " + http->url()->hostText() + "\r\n\r\n";
      EXPECT_EQ(http->send(request.c_str(), 4), 4);
      const int rest = static_cast<int>(request.size()) - 4;
      EXPECT_EQ(http->send(request.c_str() + 4, rest), rest);
    }
    self.onConnected();
  }
  static void OnData(HTTP* http, const zq_HttpResponse* response) {
    auto& self = static_cast<Download&>(*http);
    EXPECT_EQ(http->send("x", 1), -1) << "only within connected";
    EXPECT_EQ(response->status / 100, 2);
    self.body_.append(response->chunk, response->chunkLength);
    self.largest_ = std::max(self.largest_, response->chunkLength);
    EXPECT_EQ(static_cast<size_t>(response->received), self.body_.size());
    const bool first = self.data_.empty();
    self.data_ =
        " data " + std::to_string(response->received) + "/" + std::to_string(response->contentLength);
    if (first) self.firstData.set_value();
    self.onData();
  }
  static void OnError(HTTP* http) { static_cast<Download&>(*http).Add(" error"); }
  static void OnDisconnected(HTTP* http) {
    auto& self = static_cast<Download&>(*http);
    self.Add(" disconnected");
    self.over_.set_value();
  }
  void Add(const std::string& event) { events_ += std::exchange(data_, "") + event; }

  std::string events_;
  std::string data_;
  std::string body_;
  size_t largest_ = 0;
  std::promise<void> over_;
};

class HttpTest : public WwwTest {
 protected:
  // The events of a download from a server that says this.
  std::string Events(const std::string& answer) {
    TestServer server(answer);
    return EventsFrom(Url("http", server.Port()));
  }
  std::string EventsFrom(const std::string& url) {
    Download download;
    if (download.Begin(url) != 0) return "nothing begun";
    download.Await();
    body_ = download.Body();
    return download.Events();
  }

  std::string body_;
};

TEST_F(HttpTest, ADownloadIsConnectedDataAndDisconnected) {
  TestServer server(Ok("a package"));
  EXPECT_EQ(EventsFrom(Url("http", server.Port(), "/packages/app 1.tgz?x=1")),
            "connected data 9/9 disconnected");
  EXPECT_EQ(body_, "a package");
  EXPECT_THAT(server.Requests(), ElementsAre("GET /packages/app%201.tgz?x=1 HTTP/1.1\r\nHost: 127.0.0.1:" +
                                             std::to_string(server.Port()) + "\r\n\r\n"));
}

TEST_F(HttpTest, ABodyWithoutAByteIsOneCall) {
  EXPECT_EQ(Events(Ok("")), "connected data 0/0 disconnected");
  EXPECT_EQ(Events("HTTP/1.1 204 No Content\r\nContent-Length: 5\r\n\r\n"),
            "connected data 0/0 disconnected");
  EXPECT_EQ(Events("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"),
            "connected data 0/0 disconnected");
}

TEST_F(HttpTest, AnUnknownLengthIsZeroUntilTheEnd) {
  std::promise<void> seen;
  TestServer server([&](Conversation& client) {
    client.ReadRequest();
    client.Write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabcde\r\n");
    seen.get_future().wait();
    client.Write("3\r\nfgh\r\n0\r\nTrailer: x\r\n\r\n");
  });
  Download download;
  std::string first;
  download.onData = [&] {
    if (first.empty()) {
      first = download.Events();
      seen.set_value();
    }
  };
  ASSERT_EQ(download.Begin(Url("http", server.Port())), 0);
  download.Await();
  EXPECT_EQ(first, "connected data 5/0");
  EXPECT_EQ(download.Events(), "connected data 8/8 disconnected");
  EXPECT_EQ(download.Body(), "abcdefgh");
}

TEST_F(HttpTest, InterimAnswersAreNotData) {
  EXPECT_EQ(Events("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 102 Processing\r\nA: b\r\n\r\n" + Ok("x")),
            "connected data 1/1 disconnected");
  std::string many;
  for (int i = 0; i < 100; ++i) many += "HTTP/1.1 100 Continue\r\n\r\n";
  EXPECT_EQ(Events(many + Ok("x")), "connected disconnected");
}

TEST_F(HttpTest, NothingOfAnErrorPageIsData) {
  for (const char* status : {"404 Not Found", "302 Found", "301 Moved", "500 Oops", "206 Partial Content"}) {
    EXPECT_EQ(Events(std::string("HTTP/1.1 ") + status +
                     "\r\nLocation: http://127.0.0.1/else\r\nContent-Length: 5\r\n\r\nerror"),
              "connected disconnected")
        << status;
  }
}

TEST_F(HttpTest, ACutAnswerNeverReachesItsLength) {
  EXPECT_EQ(Events(""), "connected disconnected");
  EXPECT_EQ(Events("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n"), "connected disconnected");
  EXPECT_EQ(Events("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nabc"), "connected data 3/5 disconnected");
  EXPECT_EQ(Events("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabcde\r\n"),
            "connected data 5/0 disconnected");
  EXPECT_EQ(Events("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabcde\r\nnonsense\r\n"),
            "connected data 5/0 disconnected");
}

TEST_F(HttpTest, AResetIsACut) {
  TestServer server([](Conversation& client) {
    client.ReadRequest();
    client.Write("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n");
    client.ResetNow();
  });
  EXPECT_EQ(EventsFrom(Url("http", server.Port())), "connected disconnected");
}

TEST_F(HttpTest, WhatFollowsTheDeclaredLengthIsNotData) {
  EXPECT_EQ(Events(Ok("12345") + "more"), "connected data 5/5 disconnected");
  EXPECT_EQ(body_, "12345");
}

TEST_F(HttpTest, ABodyWhoseCutCouldNotBeToldIsNotData) {
  EXPECT_EQ(Events("HTTP/1.0 200 OK\r\n\r\nuntil the end"), "connected disconnected");
}

TEST_F(HttpTest, ABodyBeyondTwoGibibytesIsNotData) {
  EXPECT_EQ(Events("HTTP/1.1 200 OK\r\nContent-Length: 2147483648\r\n\r\nx"), "connected disconnected");
  EXPECT_EQ(Events("HTTP/1.1 200 OK\r\nContent-Length: 2147483647\r\n\r\nx"),
            "connected data 1/2147483647 disconnected");
}

TEST_F(HttpTest, OverTlsABodyMayEndWithTheConnection) {
  TestServer server("HTTP/1.0 200 OK\r\n\r\nuntil the end", {.identity = &Server()});
  EXPECT_EQ(EventsFrom(Url("https", server.Port())), "connected data 13/13 disconnected");
  TestServer cutting(
      [](Conversation& client) {
        client.ReadRequest();
        client.Write("HTTP/1.0 200 OK\r\n\r\nhalf");
        client.Cut();
      },
      {.identity = &Server()});
  EXPECT_EQ(EventsFrom(Url("https", cutting.Port())), "connected data 4/0 disconnected");
}

TEST_F(HttpTest, AServerThatIsNotTheOneNamedIsAnError) {
  const Identity other = MakeIdentity({.names = "DNS:elsewhere.example"}, &Authority());
  TestServer server(Ok("x"), {.identity = &other});
  EXPECT_EQ(EventsFrom(Url("https", server.Port())), " error disconnected");
}

TEST_F(HttpTest, AClosedPortIsAnError) {
  const LoopbackListener closed("127.0.0.1", LoopbackListener::Mode::kRefusing);
  const TraceCapture trace;
  EXPECT_EQ(EventsFrom(Url("http", closed.Port())), " error disconnected");
  EXPECT_THAT(trace.Raw(), testing::HasSubstr("127.0.0.1:" + std::to_string(closed.Port()) + ": "));
}

TEST_F(HttpTest, WithoutARequestTheExchangeIsOver) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); });
  Download download;
  download.sends = false;
  ASSERT_EQ(download.Begin(Url("http", server.Port())), 0);
  download.Await();
  EXPECT_EQ(download.Events(), "connected disconnected");
}

TEST_F(HttpTest, NoChunkIsLongerThanTheIncomingBuffer) {
  const std::string body(300000, 'x');
  TestServer server(Ok(body));
  for (const int wish : {1024, 5000, 0, -1}) {
    Download download;
    download.setMaxIncomingBuffer(wish);
    ASSERT_EQ(download.Begin(Url("http", server.Port())), 0);
    download.Await();
    EXPECT_EQ(download.Body().size(), body.size());
    EXPECT_LE(download.LargestChunk(), static_cast<size_t>(std::max(wish, 1024)));
  }
}

TEST_F(HttpTest, OneObjectHasOneExchange) {
  TestServer server(Ok("x"));
  Download download;
  EXPECT_EQ(download.url(), nullptr);
  EXPECT_EQ(download.Begin("nonsense"), -1);
  EXPECT_EQ(download.Begin("ftp://127.0.0.1/"), -1);
  EXPECT_EQ(download.connect(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0), -1);
  ASSERT_EQ(download.Begin(Url("http", server.Port(), "/kept")), 0);
  EXPECT_EQ(download.Begin(Url("http", server.Port())), -1);
  EXPECT_EQ(download.send("x", 1), -1) << "not on the library's thread";
  download.Await();
  EXPECT_STREQ(download.url()->requestTarget(), "/kept");
  EXPECT_EQ(server.Connections(), 1);
}

TEST_F(HttpTest, MayBeWithoutCallbacks) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); });
  HTTP http;
  const zq_URL url(Url("http", server.Port()).c_str());
  EXPECT_EQ(http.connect(&url, nullptr, nullptr, nullptr, nullptr, nullptr, 0), 0);
}

TEST_F(HttpTest, DestroyingEndsWhatIsUnderWayWithoutAWord) {
  TestServer server([](Conversation& client) {
    client.ReadRequest();
    client.Write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\nx");
    client.AwaitEnd();
  });
  auto download = std::make_unique<Download>();
  ASSERT_EQ(download->Begin(Url("http", server.Port())), 0);
  download->firstData.get_future().wait();
  EXPECT_EQ(download->Events(), "connected data 1/1000000");
  download.reset();
}

TEST_F(HttpTest, DestroyingEndsAConnectionThatIsBeingMade) {
  const Blackhole blackhole;
  const auto begun = std::chrono::steady_clock::now();
  for (int i = 0; i < 5; ++i) {
    Download download;
    ASSERT_EQ(download.Begin(Url("http", blackhole.Port())), 0);
  }
  // Far below the 30 s that a connection may take.
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(10));
}

TEST_F(HttpTest, DestroyingWaitsForACallbackUnderWay) {
  TestServer server(Ok("x"));
  std::promise<void> inside;
  std::promise<void> destroying;
  std::atomic<bool> left = false;
  auto download = std::make_unique<Download>();
  download->onConnected = [&] {
    inside.set_value();
    destroying.get_future().wait();
    // Long enough for a destructor that does not wait to return.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    left = true;
  };
  ASSERT_EQ(download->Begin(Url("http", server.Port())), 0);
  inside.get_future().wait();
  destroying.set_value();
  download->close();
  EXPECT_TRUE(left);
}

TEST_F(HttpTest, ClosingTwiceIsClosing) {
  TestServer server([](Conversation& client) { client.AwaitEnd(); });
  Download download;
  download.close();
  ASSERT_EQ(download.Begin(Url("http", server.Port())), 0);
  download.close();
  download.close();
  EXPECT_EQ(download.Events().find("disconnected"), std::string::npos);
}

// From within a callback; the object's members are gone when it returns.
struct SelfDestroying : HTTP {
  static void Destroy(HTTP* http) { delete http; }
  explicit SelfDestroying(std::promise<void>& gone) : gone_(gone) {}
  ~SelfDestroying() override { gone_.set_value(); }
  std::promise<void>& gone_;
};

TEST_F(HttpTest, DestroyingFromACallbackMakesItTheLast) {
  TestServer server(Ok("x"));
  const LoopbackListener closed("127.0.0.1", LoopbackListener::Mode::kRefusing);
  const zq_URL good(Url("http", server.Port()).c_str());
  const zq_URL bad(Url("http", closed.Port()).c_str());
  const auto never = [](HTTP*) { ADD_FAILURE() << "a callback after the end"; };
  std::promise<void> first;
  auto* http = new SelfDestroying(first);
  EXPECT_EQ(http->connect(&good, nullptr, never, nullptr, &SelfDestroying::Destroy, never, 0), 0);
  first.get_future().wait();
  std::promise<void> second;
  http = new SelfDestroying(second);
  EXPECT_EQ(http->connect(&bad, nullptr, &SelfDestroying::Destroy, nullptr, never, never, 0), 0);
  second.get_future().wait();
  std::promise<void> third;
  http = new SelfDestroying(third);
  EXPECT_EQ(http->connect(&bad, nullptr, nullptr, nullptr, nullptr, &SelfDestroying::Destroy, 0), 0);
  third.get_future().wait();
}

TEST_F(HttpTest, IsDestroyedByAnotherThreadAsSoonAsItSaidDisconnected) {
  TestServer server(Ok("x"));
  for (int i = 0; i < 50; ++i) {
    auto download = std::make_unique<Download>();
    ASSERT_EQ(download->Begin(Url("http", server.Port())), 0);
    download->Await();
    download.reset();
  }
}

TEST_F(HttpTest, AProxyIsToldTheWholeUrl) {
  TestServer proxy(Ok("by proxy"));
  const EnvironmentSetting set("http_proxy", ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  EXPECT_EQ(EventsFrom("http://updates.invalid/p/app-1.tgz"), "connected data 8/8 disconnected");
  EXPECT_EQ(EventsFrom("http://updates.invalid:8080/p?q"), "connected data 8/8 disconnected");
  EXPECT_THAT(
      proxy.Requests(),
      ElementsAre("GET http://updates.invalid/p/app-1.tgz HTTP/1.1\r\nHost: updates.invalid\r\n\r\n",
                  "GET http://updates.invalid:8080/p?q HTTP/1.1\r\nHost: updates.invalid:8080\r\n\r\n"));
}

TEST_F(HttpTest, AProxyWithoutAPortIsAskedAtTheServersPort) {
  TestServer proxy(Ok("by proxy"));
  for (const char* text :
       {"http://127.0.0.1", "http://127.0.0.1:0", "http://127.0.0.1:", "http://127.0.0.1/"}) {
    const EnvironmentSetting set("http_proxy", text);
    EXPECT_EQ(EventsFrom("http://updates.invalid:" + std::to_string(proxy.Port()) + "/"),
              "connected data 8/8 disconnected")
        << text;
  }
}

TEST_F(HttpTest, ExceptionsAreReachedDirectly) {
  TestServer server(Ok("direct"));
  const EnvironmentSetting set("http_proxy", "http://127.0.0.1:1");
  const EnvironmentSetting except("no_proxy", "example.com, 127.0.0.1");
  EXPECT_EQ(EventsFrom(Url("http", server.Port())), "connected data 6/6 disconnected");
}

TEST_F(HttpTest, AnHttpsDownloadIsTunnelled) {
  TestServer proxy(Ok("tunnelled"), {.identity = &Server(), .tunnel = true});
  const EnvironmentSetting set("http_proxy", ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  EXPECT_EQ(EventsFrom("https://localhost:4711/x"), "connected data 9/9 disconnected");
  EXPECT_EQ(proxy.Requests().at(1), "GET /x HTTP/1.1\r\nHost: localhost:4711\r\n\r\n");
}

TEST(Init, IsCountedAndATermTooManyIsIgnored) {
  zqwww_term();
  EXPECT_EQ(zqwww_init(), 1);
  EXPECT_EQ(zqwww_init(), 1);
  zqwww_term();
  zqwww_term();
  zqwww_term();
  EXPECT_EQ(zqwww_init(), 1);
  zqwww_term();
}

}  // namespace
