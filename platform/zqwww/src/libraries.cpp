#include "libraries.h"

#include <curl/curl.h>

#include <mutex>

namespace {

std::mutex g_mutex;
int g_users = 0;

}  // namespace

bool AcquireLibraries() {
  const std::lock_guard lock(g_mutex);
  if (g_users == 0 && curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) return false;
  ++g_users;
  return true;
}

void ReleaseLibraries() {
  const std::lock_guard lock(g_mutex);
  if (g_users == 0) return;
  if (--g_users == 0) curl_global_cleanup();
}
