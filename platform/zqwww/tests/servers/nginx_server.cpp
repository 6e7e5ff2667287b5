#include "nginx_server.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "loopback_listener.h"

namespace {

constexpr char kProgram[] = "/usr/sbin/nginx";

// nginx chooses no port itself; one that was just free may be taken by another program meanwhile, then it does not
// come up.
int FreePort() {
  return LoopbackListener().Port();
}

}  // namespace

NginxServer::NginxServer(const Identity& identity) {
  WriteFile(work_ / "cert.pem", CertificatePem(identity));
  WriteFile(work_ / "key.pem", KeyPem(identity));
  for (int attempt = 0; attempt < 5; ++attempt) {
    if (Start()) return;
  }
  throw std::runtime_error("nginx does not start: " + ReadFile(work_ / "error.log"));
}

NginxServer::~NginxServer() {
  if (process_ > 0) {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }
}

std::string NginxServer::Config() const {
  const std::string listen = "listen 127.0.0.1:";
  // The workers of an nginx that root started would be nobody, who need not be able to read root's files.
  const std::string user = geteuid() == 0 ? "user root; " : "";
  return user + "daemon off; pid " + work_ / "pid" + "; error_log " + work_ / "error.log" +
         ";\n"
         "worker_processes 1; events {}\n"
         "http {\n"
         "  access_log " +
         work_ / "access.log" + "; sendfile on;\n  client_body_temp_path " + work_ / "body" +
         "; proxy_temp_path " + work_ / "proxy" + "; fastcgi_temp_path " + work_ / "fastcgi" +
         "; uwsgi_temp_path " + work_ / "uwsgi" + "; scgi_temp_path " + work_ / "scgi" +
         ";\n"
         "  server {\n    " +
         listen + std::to_string(port_) + ";\n    " + listen + std::to_string(tlsPort_) +
         " ssl http2;\n"
         "    ssl_certificate " +
         work_ / "cert.pem" + "; ssl_certificate_key " + work_ / "key.pem" + ";\n    root " +
         files_.Path().string() + ";\n  }\n}\n";
}

bool NginxServer::Start() {
  port_ = FreePort();
  tlsPort_ = FreePort();
  const std::string config = work_ / "nginx.conf";
  const std::string pid = work_ / "pid";
  const std::string errors = work_ / "error.log";
  WriteFile(config, Config());
  // It ends with this process, also with one that breaks off.
  const char* const words[] = {"setpriv",      "--pdeathsig", "TERM",         kProgram, "-e",
                               errors.c_str(), "-c",          config.c_str(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  const int error = posix_spawnp(&process_, words[0], &actions, nullptr, const_cast<char**>(words), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("nginx cannot be run");
  // Its sockets listen before it writes down its number.
  while (ReadFile(pid).empty()) {
    if (waitpid(process_, nullptr, WNOHANG) == process_) {
      process_ = -1;
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}
