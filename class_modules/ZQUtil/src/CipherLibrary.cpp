#include "CipherLibrary.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

#include "zq_lazy_library.h"

namespace {

zq_LazyLibrary g_crypto("libcrypto.so.3");

}  // namespace

bool LoadCipherLibrary() {
  return g_crypto.Load();
}

extern "C" {

ZQ_PASS_ON(g_crypto, OSSL_LIB_CTX*, OSSL_LIB_CTX_new, (), ())
ZQ_PASS_ON(g_crypto, void, OSSL_LIB_CTX_free, (OSSL_LIB_CTX * library), (library))
ZQ_PASS_ON(g_crypto, OSSL_PROVIDER*, OSSL_PROVIDER_load, (OSSL_LIB_CTX * library, const char* name),
           (library, name))
ZQ_PASS_ON(g_crypto, int, OSSL_PROVIDER_unload, (OSSL_PROVIDER * provider), (provider))
ZQ_PASS_ON(g_crypto, EVP_CIPHER*, EVP_CIPHER_fetch,
           (OSSL_LIB_CTX * library, const char* name, const char* properties), (library, name, properties))
ZQ_PASS_ON(g_crypto, void, EVP_CIPHER_free, (EVP_CIPHER * cipher), (cipher))
ZQ_PASS_ON(g_crypto, EVP_CIPHER_CTX*, EVP_CIPHER_CTX_new, (), ())
ZQ_PASS_ON(g_crypto, void, EVP_CIPHER_CTX_free, (EVP_CIPHER_CTX * context), (context))
ZQ_PASS_ON(g_crypto, int, EVP_DecryptInit_ex2,
           (EVP_CIPHER_CTX * context, const EVP_CIPHER* cipher, const unsigned char* key,
            const unsigned char* iv, const OSSL_PARAM parameters[]),
           (context, cipher, key, iv, parameters))
ZQ_PASS_ON(g_crypto, int, EVP_DecryptUpdate,
           (EVP_CIPHER_CTX * context, unsigned char* out, int* written, const unsigned char* in, int length),
           (context, out, written, in, length))
ZQ_PASS_ON(g_crypto, int, EVP_DecryptFinal_ex, (EVP_CIPHER_CTX * context, unsigned char* out, int* written),
           (context, out, written))
ZQ_PASS_ON(g_crypto, void, OPENSSL_cleanse, (void* bytes, size_t size), (bytes, size))

}  // extern "C"
