// What every test against a server begins with: a trusted authority, a server's identity, no proxy.
#ifndef ZQWWW_TEST_WWW_FIXTURE_H
#define ZQWWW_TEST_WWW_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "environment_setting.h"
#include "temp_dir.h"
#include "test_server.h"

class WwwTest : public testing::Test {
 protected:
  // Made once a program: keys take time.
  static const Identity& Authority() {
    static const Identity authority = MakeAuthority();
    return authority;
  }
  static const Identity& Server() {
    static const Identity server = MakeIdentity({}, &Authority());
    return server;
  }

  WwwTest()
      : trusted_("ZQ_CA_FILE", (folder_ / "authority.pem").c_str()),
        noProxy_("http_proxy", nullptr),
        noExceptions_("no_proxy", nullptr) {
    WriteFile(folder_ / "authority.pem", CertificatePem(Authority()));
  }

  static std::string Url(const char* scheme, int port, const char* path = "/") {
    return std::string(scheme) + "://127.0.0.1:" + std::to_string(port) + path;
  }

  TempDir folder_;

 private:
  EnvironmentSetting trusted_;
  EnvironmentSetting noProxy_;
  EnvironmentSetting noExceptions_;
};

// An answer with a body that its header declares.
inline std::string Ok(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

#endif
