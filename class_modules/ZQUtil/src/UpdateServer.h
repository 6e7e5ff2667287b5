// The update server: where it is, and what every request to it carries.
#ifndef ZQUTIL_UPDATE_SERVER_H
#define ZQUTIL_UPDATE_SERVER_H

#include <cstdint>
#include <string>

class SSLHTTP;

// A name that is nobody's: an integrator puts the server's own into zqapplog.ini.
constexpr char kDefaultUpdateHost[] = "updates.example.invalid";

struct UpdateServer {
  std::string host;
  int32_t port;
};

// "host" and "sslport" of zqapplog.ini. Any thread.
UpdateServer ConfiguredUpdateServer();
// The header fields of every request: User-Agent, Accept, Proxy-Connection.
void AddUpdateHeaders(SSLHTTP& http);
// False when there is no connection to a server that proved to be the one.
bool ConnectToUpdateServer(SSLHTTP& http, const UpdateServer& server);

// The transport library, ready for as long as this lives: a thread that uses it may outlive the singleton.
class TransportUse {
 public:
  TransportUse();
  TransportUse(const TransportUse&) = delete;
  TransportUse& operator=(const TransportUse&) = delete;
  ~TransportUse();

 private:
  const bool prepared_;
};

#endif
