#include "UpdateCipher.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

#include <cstdint>

#include "CipherLibrary.h"
#include "UpdateKey.h"

namespace {

template <auto Free>
struct Freeing {
  template <typename Object>
  void operator()(Object* object) const {
    Free(object);
  }
};
template <typename Object, auto Free>
using Owned = std::unique_ptr<Object, Freeing<Free>>;

}  // namespace

// Freed from the last to the first.
struct UpdateCipher::State {
  const Owned<OSSL_LIB_CTX, OSSL_LIB_CTX_free> library{OSSL_LIB_CTX_new()};
  const Owned<OSSL_PROVIDER, OSSL_PROVIDER_unload> base{OSSL_PROVIDER_load(library.get(), "default")};
  const Owned<OSSL_PROVIDER, OSSL_PROVIDER_unload> legacy{OSSL_PROVIDER_load(library.get(), "legacy")};
  const Owned<EVP_CIPHER, EVP_CIPHER_free> cipher{
      legacy != nullptr ? EVP_CIPHER_fetch(library.get(), "BF-CBC", nullptr) : nullptr};
  const Owned<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free> context{EVP_CIPHER_CTX_new()};
};

UpdateCipher::UpdateCipher() = default;

UpdateCipher::~UpdateCipher() = default;

bool UpdateCipher::Begin() {
  if (!LoadCipherLibrary()) return false;
  state_ = std::make_unique<State>();
  if (state_->cipher == nullptr || state_->context == nullptr) return false;
  uint8_t key[kUpdateKey.size()];
  uint8_t iv[kUpdateIv.size()];
  for (size_t i = 0; i < sizeof key; ++i) key[i] = kUpdateKey[i];
  for (size_t i = 0; i < sizeof iv; ++i) iv[i] = kUpdateIv[i];
  const bool begun = EVP_DecryptInit_ex2(state_->context.get(), state_->cipher.get(), key, iv, nullptr) == 1;
  OPENSSL_cleanse(key, sizeof key);
  OPENSSL_cleanse(iv, sizeof iv);
  return begun;
}

bool UpdateCipher::Update(unsigned char* out, int* outLength, const unsigned char* in, int length) {
  return EVP_DecryptUpdate(state_->context.get(), out, outLength, in, length) == 1;
}

bool UpdateCipher::Final(unsigned char* out, int* outLength) {
  return EVP_DecryptFinal_ex(state_->context.get(), out, outLength) == 1;
}
