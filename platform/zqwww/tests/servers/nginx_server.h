// An nginx of a test's own, on ports of this machine: files of a folder, plain and over TLS with HTTP/2 offered.
#ifndef ZQWWW_TEST_NGINX_SERVER_H
#define ZQWWW_TEST_NGINX_SERVER_H

#include <sys/types.h>

#include <string>

#include "certificates.h"
#include "temp_dir.h"

class NginxServer {
 public:
  // Throws std::runtime_error when it does not come up.
  explicit NginxServer(const Identity& identity);
  NginxServer(const NginxServer&) = delete;
  NginxServer& operator=(const NginxServer&) = delete;
  ~NginxServer();

  int Port() const { return port_; }
  int TlsPort() const { return tlsPort_; }
  // What it serves.
  const TempDir& Folder() const { return files_; }
  std::string AccessLog() const { return work_ / "access.log"; }

 private:
  std::string Config() const;
  bool Start();

  TempDir work_;
  TempDir files_;
  int port_ = 0;
  int tlsPort_ = 0;
  pid_t process_ = -1;
};

#endif
