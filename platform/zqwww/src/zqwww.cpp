#include "zqwww.h"

#include <curl/curl.h>

#include <mutex>

namespace {

std::mutex g_mutex;
int g_users = 0;

}  // namespace

int zqwww_init() {
  const std::lock_guard lock(g_mutex);
  if (g_users == 0 && curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) return 0;
  ++g_users;
  return 1;
}

void zqwww_term() {
  const std::lock_guard lock(g_mutex);
  if (g_users == 0) return;
  if (--g_users == 0) curl_global_cleanup();
}
