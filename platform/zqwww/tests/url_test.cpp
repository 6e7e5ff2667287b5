#include <gtest/gtest.h>

#include <string>

#include "environment_setting.h"
#include "zqwww.h"

namespace {

class UrlTest : public testing::Test {
 private:
  EnvironmentSetting noProxy_{"http_proxy", nullptr};
  EnvironmentSetting noExceptions_{"no_proxy", nullptr};
};

// Scheme, host, port, Host header and request target between blanks.
std::string Show(const char* text) {
  const zq_URL url(text);
  if (!url.valid()) {
    EXPECT_STREQ(url.scheme(), "");
    EXPECT_STREQ(url.host(), "");
    EXPECT_EQ(url.port(), 0);
    EXPECT_STREQ(url.hostText(), "");
    EXPECT_STREQ(url.requestTarget(), "");
    return "not valid";
  }
  return std::string(url.scheme()) + " " + url.host() + " " + std::to_string(url.port()) + " " +
         url.hostText() + " " + url.requestTarget();
}

TEST_F(UrlTest, IsTakenApart) {
  EXPECT_EQ(Show("http://h/p/app-1.tgz"), "http h 80 h /p/app-1.tgz");
  EXPECT_EQ(Show("http://h"), "http h 80 h /");
  EXPECT_EQ(Show("http://h:8080/p?a=b&c"), "http h 8080 h:8080 /p?a=b&c");
  EXPECT_EQ(Show("https://h/"), "https h 443 h /");
  EXPECT_EQ(Show("https://h:443/"), "https h 443 h /");
  EXPECT_EQ(Show("http://h:80/"), "http h 80 h /");
  EXPECT_EQ(Show("http://h:443/"), "http h 443 h:443 /");
  EXPECT_EQ(Show("HTTP://Host.Example/P"), "http Host.Example 80 Host.Example /P");
  EXPECT_EQ(Show("http://h?q"), "http h 80 h /?q");
  EXPECT_EQ(Show("http://h/p#fragment"), "http h 80 h /p");
  EXPECT_EQ(Show("http://[::1]:8080/"), "http [::1] 8080 [::1]:8080 /");
  EXPECT_EQ(Show("http://10.0.0.1/"), "http 10.0.0.1 80 10.0.0.1 /");
  EXPECT_EQ(Show("http://h:65535/"), "http h 65535 h:65535 /");
  EXPECT_EQ(Show("https://00/zqapplog/updateReq?mac=h").substr(0, 6), "https ");
  EXPECT_STREQ(zq_URL("https://00/zqapplog/updateReq?mac=h").requestTarget(), "/zqapplog/updateReq?mac=h");
}

TEST_F(UrlTest, BlanksAndBytesBeyondAsciiAreEncoded) {
  EXPECT_EQ(Show("http://h/app 1.tgz"), "http h 80 h /app%201.tgz");
  EXPECT_EQ(Show("http://h/%20\xc3\xa4"), "http h 80 h /%20%c3%a4");
}

TEST_F(UrlTest, WhatIsNoUrlIsNotValid) {
  const std::string longest = "http://h/" + std::string(4096 - 9, 'a');
  EXPECT_NE(Show(longest.c_str()), "not valid");
  EXPECT_EQ(Show((longest + "a").c_str()), "not valid");
  for (const char* text : {"",
                           "h",
                           "/p",
                           "//h/p",
                           "http",
                           "http:",
                           "http:/",
                           "http://",
                           "http:///",
                           "http:///p",
                           "http:/h/p",
                           "http:h",
                           "ftp://h/",
                           "file:///etc/passwd",
                           "httpx://h/",
                           " http://h/",
                           "http://h:0/",
                           "http://h:65536/",
                           "http://h:-1/",
                           "http://h:x/",
                           "http://h:80x/",
                           "http://:80/",
                           "http://u@h/",
                           "http://u:p@h/",
                           "http://h\\p@i/",
                           "http://h h/",
                           "http://h\t/",
                           "http://h/\r\nX: y",
                           "http://h/\n",
                           "http://h/\x7f",
                           "http://[::1/",
                           "http://[x]/",
                           "http://%0d%0a/",
                           "http://a%2fb/",
                           "http://%00/",
                           "http://h%20h/",
                           "http://?",
                           "http://#"}) {
    EXPECT_EQ(Show(text), "not valid") << text;
  }
  EXPECT_FALSE(zq_URL(nullptr).valid());
}

TEST_F(UrlTest, NothingInAUrlEndsARequestLine) {
  for (int byte = 1; byte < 256; ++byte) {
    const std::string text =
        std::string("http://h/a") + static_cast<char>(byte) + "b?c" + static_cast<char>(byte);
    const std::string target = zq_URL(text.c_str()).requestTarget();
    for (const char one : target) EXPECT_TRUE(one > ' ' && one < 0x7f) << byte;
  }
}

TEST_F(UrlTest, ForAProxyThatDoesNotTunnelTheTargetIsTheWholeUrl) {
  const EnvironmentSetting set("http_proxy", "http://proxy:3128");
  EXPECT_STREQ(zq_URL("http://h:8080/p?q").requestTarget(), "http://h:8080/p?q");
  EXPECT_STREQ(zq_URL("http://h").requestTarget(), "http://h/");
  EXPECT_STREQ(zq_URL("https://h/p").requestTarget(), "/p") << "tunnelled";
  EXPECT_STREQ(zq_URL("http://h/p").hostText(), "h");
}

TEST_F(UrlTest, ACopyKeepsWhatItWasMadeWith) {
  const zq_URL none("nonsense");
  EXPECT_FALSE(zq_URL(none).valid());
  const zq_URL url("http://h:1/p");
  const EnvironmentSetting set("http_proxy", "http://proxy:3128");
  EXPECT_STREQ(zq_URL(url).requestTarget(), "/p");
}

}  // namespace
