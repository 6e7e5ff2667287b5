// The connection to the log server, directly or through the proxy that the environment names.
#include <unistd.h>

#include <cstdlib>

#include "ProxyAddress.h"
#include "loopback_listener.h"
#include "module_fixture.h"
#include "refused_memory.h"
#include "zq_socket.h"

namespace {

// "host:port", as the rule has it for the given proxy and "log.example", port 99.
std::string Target(const char* proxy) {
  const ConnectionTarget target = ProxyOrAddress(proxy, "log.example", 99);
  return target.host + " " + std::to_string(target.port);
}

TEST(ProxyAddress, WithoutAProxyTheHostIsMeant) {
  EXPECT_EQ(Target(nullptr), "log.example 99");
  EXPECT_EQ(Target(""), "log.example 99");
}

TEST(ProxyAddress, AProxyHasItsOwnHostAndPort) {
  EXPECT_EQ(Target("http://proxy:8080"), "proxy 8080");
  EXPECT_EQ(Target("http://proxy:8080/"), "proxy 8080") << "the number ends at the first other character";
}

TEST(ProxyAddress, AProxyWithoutAPortHasTheGivenOne) {
  EXPECT_EQ(Target("http://proxy"), "proxy 99");
  EXPECT_EQ(Target("http://proxy:0"), "proxy 99");
  EXPECT_EQ(Target("http://proxy:"), "proxy 99");
  EXPECT_EQ(Target("http://proxy:none"), "proxy 99");
}

TEST(ProxyAddress, APathAfterAHostWithoutAPortStaysPartOfTheHost) {
  EXPECT_EQ(Target("http://proxy/"), "proxy/ 99");
  EXPECT_EQ(Target("http://proxy/a/b"), "proxy/a/b 99");
}

TEST(ProxyAddress, TextsThatAreNoProxyAreIgnored) {
  EXPECT_EQ(Target("http://"), "log.example 99") << "7 characters";
  EXPECT_EQ(Target("proxy:1"), "log.example 99");
  EXPECT_EQ(Target("https://proxy:8080"), "log.example 99");
  EXPECT_EQ(Target("HTTP://proxy:8080"), "log.example 99");
}

TEST(ProxyAddress, ThePrefixCountsWhereverItStands) {
  EXPECT_EQ(Target("x=http://proxy:81"), "proxy 81");
  EXPECT_EQ(Target("12345678http://"), " 99");
}

class LogSocketTest : public ModuleTest {
 protected:
  LogSocketTest() {
    New();
    Settle();
    ForgetTraces();
  }
  ~LogSocketTest() override { unsetenv("http_proxy"); }

  static uint32_t Open(const char* host, int32_t port) {
    return ZQUtil::m_pInstance->OpenSocketToProxyOrAddress(host, port);
  }
};

TEST_F(LogSocketTest, TheConnectionsEventsComeToTheModulesQueue) {
  LoopbackListener server;
  Object& listener = engine.NewObject();
  ZQUtil::m_pInstance->connectivityListener = &listener;
  EXPECT_NE(Open("localhost", server.Port()), 0U);
  const int connection = server.Accept();
  char byte = 0;
  EXPECT_EQ(read(connection, &byte, 1), 0) << "the handler closes what nobody uses";
  close(connection);
  Settle();
  EXPECT_EQ(engine.TakeCalls(), "onConnectSuccess()");
  EXPECT_EQ(Traces(), "ZQUtil Opening Socket\nZQUtil Sending Connectivity Listener Success\n");
}

TEST_F(LogSocketTest, TheProxyIsConnectedInPlaceOfTheHost) {
  LoopbackListener proxy;
  setenv("http_proxy", ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str(), 1);
  EXPECT_NE(Open("log.example.invalid", 1), 0U);
  close(proxy.Accept());
}

TEST_F(LogSocketTest, AProxyWithPortZeroHasTheGivenPort) {
  LoopbackListener proxy;
  setenv("http_proxy", "http://127.0.0.1:0", 1);
  EXPECT_NE(Open("log.example.invalid", proxy.Port()), 0U);
  close(proxy.Accept());
}

TEST_F(LogSocketTest, WithoutMemoryForTheProxysHostThereIsNoSocket) {
  const std::string host(100000, 'x');
  setenv("http_proxy", ("http://" + host).c_str(), 1);
  const RefusedMemory refused(host.size());
  EXPECT_EQ(Open("localhost", 80), 0U);
}

TEST_F(LogSocketTest, WhatCannotBeReachedIsZero) {
  // Longer than a part of a name may be: no name server is asked, which could give any answer.
  EXPECT_EQ(Open((std::string(64, 'x') + ".invalid").c_str(), 80), 0U);
  EXPECT_EQ(Open(nullptr, 80), 0U);
  EXPECT_EQ(Open("", 80), 0U);
  for (const int32_t port : {0, -1, 65536, 70000}) EXPECT_EQ(Open("127.0.0.1", port), 0U) << port;
}

}  // namespace
