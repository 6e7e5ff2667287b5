// Certificates made for a test: an authority, and what it signs.
#ifndef ZQWWW_TEST_CERTIFICATES_H
#define ZQWWW_TEST_CERTIFICATES_H

#include <openssl/x509.h>

#include <ctime>
#include <memory>
#include <string>

struct OpensslFree {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(X509* certificate) const { X509_free(certificate); }
};
using Key = std::unique_ptr<EVP_PKEY, OpensslFree>;
using Certificate = std::unique_ptr<X509, OpensslFree>;

struct Identity {
  Key key;
  Certificate certificate;
};

struct CertificateWish {
  // As OpenSSL writes subjectAltName: "DNS:localhost,IP:127.0.0.1"; empty for an authority.
  std::string names = "DNS:localhost,IP:127.0.0.1";
  long fromNow = -3600;   // seconds: valid from
  long untilNow = 86400;  // seconds: valid until
};

// Signed by `authority`, by itself when that is null. Throws std::runtime_error.
Identity MakeIdentity(const CertificateWish& wish, const Identity* authority);
Identity MakeAuthority();
std::string CertificatePem(const Identity& identity);
std::string KeyPem(const Identity& identity);

#endif
