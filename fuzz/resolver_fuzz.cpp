// Any bytes as the resolver's file.
#include <sys/mman.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "LineFile.h"
#include "ResolverFile.h"

namespace {

void Require(bool holds) {
  if (!holds) abort();
}

void RequireServer(const std::string& server) {
  if (server.empty()) return;
  Require(server.find('\0') == std::string::npos &&
          server.size() < 999 - std::string_view("nameserver").size() + 1);
  Require(std::string_view(" \t\n\v\f\r").find(server.front()) == std::string_view::npos);
  Require(std::string_view(" \r\n").find(server.back()) == std::string_view::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const int bytes = memfd_create("resolver", MFD_CLOEXEC);
  Require(write(bytes, data, size) == static_cast<ssize_t>(size) && lseek(bytes, 0, SEEK_SET) == 0);
  LineFile<999> file(bytes);
  ResolverFile servers;
  while (file.Next()) {
    const ResolverFile before = servers;
    servers.AddLine(file.Text());
    Require(before.First().empty() || servers.First() == before.First());
    Require(before.Second().empty() || servers.Second() == before.Second());
  }
  for (const std::string& server : {servers.First(), servers.Second(), servers.Third()})
    RequireServer(server);
  Require(servers.Third().empty() || !servers.Second().empty());
  Require(servers.Second().empty() || !servers.First().empty());
  return 0;
}
