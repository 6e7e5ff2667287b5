// Against a server that others wrote, and that offers HTTP/2.
#include <gtest/gtest.h>

#include <future>
#include <string>

#include "nginx_server.h"
#include "www_fixture.h"
#include "zq_memory.h"
#include "zqwww.h"

namespace {

class NginxTest : public WwwTest {
 protected:
  NginxTest() : nginx_(Server()) {}
  NginxServer nginx_;
};

TEST_F(NginxTest, AServerThatOffersHttp2IsAskedInHttp1) {
  WriteFile(nginx_.Folder() / "answer.xml", "<updates/>");
  for (int i = 0; i < 3; ++i) {
    SSLHTTP http;
    ASSERT_TRUE(http.Connect(6, "localhost", nginx_.TlsPort()));
    char* answer = http.SendBody(nullptr, "https://00/answer.xml", true);
    ASSERT_NE(answer, nullptr);
    EXPECT_STREQ(answer, "<updates/>");
    zq__free(answer, __FILE__, __LINE__);
  }
  EXPECT_NE(ReadFile(nginx_.AccessLog()).find("\"GET /answer.xml HTTP/1.1\" 200"), std::string::npos);
}

TEST_F(NginxTest, AMissingFileIsNoAnswer) {
  SSLHTTP http;
  ASSERT_TRUE(http.Connect(6, "localhost", nginx_.TlsPort()));
  EXPECT_EQ(http.SendBody(nullptr, "https://00/gone", true), nullptr);
}

struct Counter : HTTP {
  ~Counter() override { close(); }
  static void Ask(HTTP* http) {
    const std::string request = std::string("GET ") + http->url()->requestTarget() +
                                " HTTP/1.1\r\nHost: " + http->url()->hostText() + "\r\n\r\n";
    http->send(request.c_str(), static_cast<int>(request.size()));
  }
  static void Count(HTTP* http, const zq_HttpResponse* response) {
    auto& self = static_cast<Counter&>(*http);
    for (size_t i = 0; i < response->chunkLength; ++i) {
      self.sum = self.sum * 31 + static_cast<unsigned char>(response->chunk[i]);
    }
    self.whole = response->received == response->contentLength;
  }
  static void Over(HTTP* http) { static_cast<Counter&>(*http).over.set_value(); }

  uint64_t sum = 0;
  bool whole = false;
  std::promise<void> over;
};

TEST_F(NginxTest, ADownloadIsWholePlainAndOverTls) {
  std::string body;
  uint64_t sum = 0;
  for (int i = 0; i < 3000000; ++i) {
    body += static_cast<char>(i * 7 + i / 1000);
    sum = sum * 31 + static_cast<unsigned char>(body.back());
  }
  WriteFile(nginx_.Folder() / "app 1.tgz", body);
  for (const std::string& url :
       {Url("http", nginx_.Port(), "/app 1.tgz"), Url("https", nginx_.TlsPort(), "/app 1.tgz")}) {
    Counter counter;
    counter.setMaxIncomingBuffer(512000);
    const zq_URL parts(url.c_str());
    ASSERT_EQ(counter.connect(&parts, &Counter::Count, nullptr, nullptr, &Counter::Ask, &Counter::Over, 0),
              0);
    counter.over.get_future().wait();
    EXPECT_TRUE(counter.whole) << url;
    EXPECT_EQ(counter.sum, sum) << url;
  }
}

}  // namespace
