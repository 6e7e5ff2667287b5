// Decryption with the update key: Blowfish-CBC, its padding removed.
#ifndef ZQUTIL_UPDATE_CIPHER_H
#define ZQUTIL_UPDATE_CIPHER_H

#include <memory>

// One package. The ciphers are in a context of their own: the host's and other modules' OpenSSL stays as it is. One
// thread at a time.
class UpdateCipher {
 public:
  UpdateCipher();
  UpdateCipher(const UpdateCipher&) = delete;
  UpdateCipher& operator=(const UpdateCipher&) = delete;
  ~UpdateCipher();

  // First and once. False when there is no OpenSSL, or it has no Blowfish: nothing else may be asked then.
  bool Begin();
  // `out` has room for `length` bytes and one block (8 bytes) more; `outLength` says how many came.
  bool Update(unsigned char* out, int* outLength, const unsigned char* in, int length);
  // The last bytes, fewer than a block. False when the end is none of a package under this key.
  bool Final(unsigned char* out, int* outLength);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
