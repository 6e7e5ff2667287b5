#include "libraries.h"

#include <curl/curl.h>

#include <mutex>

#include "transport_library.h"

namespace {

std::mutex g_mutex;
int g_users = 0;
bool g_ready = false;

bool MakeReady() {
  return LoadTransport() && curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
}

}  // namespace

void AddLibrariesUser() {
  const std::lock_guard lock(g_mutex);
  ++g_users;
}

bool AcquireLibraries() {
  const std::lock_guard lock(g_mutex);
  if (!g_ready && !MakeReady()) return false;
  g_ready = true;
  ++g_users;
  return true;
}

void ReleaseLibraries() {
  const std::lock_guard lock(g_mutex);
  if (g_users == 0 || --g_users > 0 || !g_ready) return;
  curl_global_cleanup();
  g_ready = false;
}
