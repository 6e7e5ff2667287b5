#include "transport_library.h"

#include <curl/curl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>

#include "zq_lazy_library.h"

namespace {

// By the names that programs built against them load.
zq_LazyLibrary g_curl("libcurl.so.4");
zq_LazyLibrary g_ssl("libssl.so.3");
zq_LazyLibrary g_crypto("libcrypto.so.3");

}  // namespace

CurlSetOption* FindCurlSetOption() {
  static auto* const real = reinterpret_cast<CurlSetOption*>(g_curl.Symbol("curl_easy_setopt"));
  return real;
}

CurlGetInfo* FindCurlGetInfo() {
  static auto* const real = reinterpret_cast<CurlGetInfo*>(g_curl.Symbol("curl_easy_getinfo"));
  return real;
}

bool LoadTransport() {
  return g_curl.Load() && g_ssl.Load() && g_crypto.Load();
}

extern "C" {

ZQ_PASS_ON(g_curl, CURLcode, curl_global_init, (long flags), (flags))
ZQ_PASS_ON(g_curl, void, curl_global_cleanup, (), ())
ZQ_PASS_ON(g_curl, void, curl_free, (void* text), (text))
ZQ_PASS_ON(g_curl, CURL*, curl_easy_init, (), ())
ZQ_PASS_ON(g_curl, void, curl_easy_cleanup, (CURL * easy), (easy))
ZQ_PASS_ON(g_curl, const char*, curl_easy_strerror, (CURLcode code), (code))
ZQ_PASS_ON(g_curl, CURLcode, curl_easy_send, (CURL * easy, const void* bytes, size_t size, size_t* sent),
           (easy, bytes, size, sent))
ZQ_PASS_ON(g_curl, CURLcode, curl_easy_recv, (CURL * easy, void* bytes, size_t size, size_t* received),
           (easy, bytes, size, received))
ZQ_PASS_ON(g_curl, CURLM*, curl_multi_init, (), ())
ZQ_PASS_ON(g_curl, CURLMcode, curl_multi_cleanup, (CURLM * multi), (multi))
ZQ_PASS_ON(g_curl, CURLMcode, curl_multi_add_handle, (CURLM * multi, CURL* easy), (multi, easy))
ZQ_PASS_ON(g_curl, CURLMcode, curl_multi_remove_handle, (CURLM * multi, CURL* easy), (multi, easy))
ZQ_PASS_ON(g_curl, CURLMcode, curl_multi_perform, (CURLM * multi, int* running), (multi, running))
ZQ_PASS_ON(g_curl, CURLMsg*, curl_multi_info_read, (CURLM * multi, int* left), (multi, left))
ZQ_PASS_ON(g_curl, CURLMcode, curl_multi_poll,
           (CURLM * multi, curl_waitfd others[], unsigned int count, int timeout, int* ready),
           (multi, others, count, timeout, ready))
ZQ_PASS_ON(g_curl, CURLU*, curl_url, (), ())
ZQ_PASS_ON(g_curl, void, curl_url_cleanup, (CURLU * url), (url))
ZQ_PASS_ON(g_curl, CURLUcode, curl_url_set,
           (CURLU * url, CURLUPart part, const char* text, unsigned int flags), (url, part, text, flags))
ZQ_PASS_ON(g_curl, CURLUcode, curl_url_get, (CURLU * url, CURLUPart part, char** text, unsigned int flags),
           (url, part, text, flags))

ZQ_PASS_ON(g_ssl, X509_STORE*, SSL_CTX_get_cert_store, (const SSL_CTX* context), (context))
ZQ_PASS_ON(g_ssl, int, SSL_get_shutdown, (const SSL* session), (session))
ZQ_PASS_ON(g_crypto, int, X509_STORE_load_file, (X509_STORE * store, const char* file), (store, file))
ZQ_PASS_ON(g_crypto, int, X509_STORE_load_path, (X509_STORE * store, const char* path), (store, path))
ZQ_PASS_ON(g_crypto, const char*, X509_get_default_cert_dir, (), ())
ZQ_PASS_ON(g_crypto, const char*, X509_get_default_cert_file, (), ())
ZQ_PASS_ON(g_crypto, void, ERR_clear_error, (), ())

}  // extern "C"
