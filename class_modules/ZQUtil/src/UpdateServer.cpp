#include "UpdateServer.h"

#include "ZQUtilPersistence.h"
#include "zq_ini.h"
#include "zqwww.h"

namespace {

constexpr char kServerFile[] = "zqapplog.ini";
constexpr int32_t kDefaultPort = 443;
constexpr size_t kMostHost = 255;

}  // namespace

UpdateServer ConfiguredUpdateServer() {
  char host[kMostHost + 1] = {};
  zq_GetINIFileString(kConfigSection, "host", kDefaultUpdateHost, host, kMostHost, kServerFile);
  return {host, zq_GetINIFileInt(kConfigSection, "sslport", kDefaultPort, kServerFile)};
}

void AddUpdateHeaders(SSLHTTP& http) {
  http.AddHeader("User-Agent", "Brimvale RSS transport layer");
  http.AddHeader("Accept",
                 "text/xml, application/xml, application/xhtml+xml, text/html; q=0.9, text/plain; q=0.8");
  http.AddHeader("Proxy-Connection", "Keep-Alive");
}

bool ConnectToUpdateServer(SSLHTTP& http, const UpdateServer& server) {
  return http.Connect(ZQWWW_TCP, server.host.c_str(), server.port);
}

TransportUse::TransportUse() : prepared_(zqwww_init() != 0) {}

TransportUse::~TransportUse() {
  if (prepared_) zqwww_term();
}
