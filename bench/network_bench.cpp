// What the network's getters cost beside the bare calls that fetch the same: on this machine as it is, its interface eth0,
// its routes and its name servers, and a key store of 40 keys.
#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ZQNetwork.h"
#include "nvram.h"
#include "ratio.h"
#include "temp_dir.h"
#include "zq_memory.h"
#include "zq_trace.h"

namespace {

constexpr int kRounds = 25;
constexpr int kCalls = 200;
constexpr double kLimit = 1.5;

// Keeps a result from being thought away.
volatile size_t g_used = 0;

void Use(char* text) {
  g_used = g_used + std::strlen(text);
  zq__free(text, "bench", 0);
}

void Use(const std::string& text) {
  g_used = g_used + text.size();
}

// A file as one read gives it.
std::string Slurp(const char* path) {
  char bytes[16384];
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  const ssize_t count = file >= 0 ? read(file, bytes, sizeof bytes) : 0;
  close(file);
  return {bytes, count > 0 ? static_cast<size_t>(count) : 0};
}

std::string BareKey(const char* key) {
  char value[128] = {};
  const int store = nvram_open(0, 0);
  nvram_read_key(store, nullptr, key, value, sizeof value);
  nvram_close(store);
  return value;
}

std::string BareGateway() {
  const std::string routes = Slurp("/proc/net/route");
  const size_t at = routes.find("\t00000000\t");
  if (at == std::string::npos) return "0.0.0.0";
  in_addr address{};
  address.s_addr = static_cast<in_addr_t>(std::strtoul(routes.c_str() + at + 10, nullptr, 16));
  char text[INET_ADDRSTRLEN];
  return inet_ntop(AF_INET, &address, text, sizeof text);
}

std::string BareNameServer() {
  const std::string resolver = Slurp("/etc/resolv.conf");
  const size_t at = resolver.find("nameserver ");
  if (at == std::string::npos) return {};
  return resolver.substr(at + 11, resolver.find('\n', at) - at - 11);
}

std::string BareAddress() {
  const char* const interface = BareKey("net.wifi") == "yes" ? "ra0" : "eth0";
  const int asked = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ifreq entries[10] = {};
  ifconf list{};
  list.ifc_len = sizeof entries;
  list.ifc_req = entries;
  ioctl(asked, SIOCGIFCONF, &list);
  std::string found;
  for (int i = 0; i < list.ifc_len / static_cast<int>(sizeof(ifreq)); ++i) {
    ifreq flags = entries[i];
    ioctl(asked, SIOCGIFFLAGS, &flags);
    if ((flags.ifr_flags & IFF_UP) == 0 || strncasecmp(entries[i].ifr_name, interface, 4) != 0) continue;
    char text[INET_ADDRSTRLEN];
    found = inet_ntop(AF_INET, entries[i].ifr_addr.sa_data + 2, text, sizeof text);
  }
  close(asked);
  return found;
}

template <typename Ours, typename Bare>
bool Compare(const char* what, const Ours& ours, const Bare& bare) {
  const auto repeated = [](const auto& call) {
    return [&call] {
      for (int i = 0; i < kCalls; ++i) Use(call());
    };
  };
  const bench::Pair pair = bench::Best(kRounds, repeated(ours), repeated(bare));
  std::printf("%s: %.2f us, bare %.2f us\n", what, pair.ours * 1e6 / kCalls, pair.theirs * 1e6 / kCalls);
  return bench::Report(what, pair.Ratio(), kLimit);
}

}  // namespace

int main() {
  // The bare calls trace nothing.
  zq_TraceRedirect("off", INT_MAX);
  const TempDir folder;
  WriteFile(folder / "config", (folder / "a") + " 0 0x4000\n" + (folder / "b") + " 0 0x4000\n");
  setenv("ZQ_NVRAM_CONFIG", (folder / "config").c_str(), 1);
  const int store = nvram_open(0, 0);
  for (int key = 0; key < 40; ++key) {
    nvram_write_key(store, nullptr, ("key" + std::to_string(key)).c_str(), "some value of a usual length");
  }
  nvram_write_key(store, nullptr, "net.wifi", "no");
  nvram_write_key(store, nullptr, "net.essid", "Home");
  nvram_close(store);

  ZQNetwork network(true);
  bool kept = Compare(
      "getIP", [&] { return network.getCurrentIP(); }, BareAddress);
  kept &= Compare(
      "getGateway", [&] { return network.getGateway(); }, BareGateway);
  kept &= Compare(
      "getPrimaryDNS", [&] { return network.getPrimaryDNS(); }, BareNameServer);
  kept &= Compare(
      "getConfiguredESSID", [&] { return network.getConfiguredESSID(); },
      [] { return BareKey("net.essid"); });
  return kept ? 0 : 1;
}
