#include "certificates.h"

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <stdexcept>

namespace {

void Check(bool held, const char* what) {
  if (!held) throw std::runtime_error(std::string("certificate: ") + what);
}

void AddExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
  Check(extension != nullptr && X509_add_ext(certificate, extension, -1) == 1, "extension");
  X509_EXTENSION_free(extension);
}

template <typename Write>
std::string Pem(const Write& write) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
  Check(write(memory.get()) == 1, "PEM");
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<size_t>(size)};
}

}  // namespace

Identity MakeIdentity(const CertificateWish& wish, const Identity* authority) {
  static std::atomic<long> serial{1};
  Identity made{Key(EVP_EC_gen("P-256")), Certificate(X509_new())};
  X509* certificate = made.certificate.get();
  Check(made.key != nullptr && certificate != nullptr, "memory");
  X509* issuer = authority != nullptr ? authority->certificate.get() : certificate;
  X509_set_version(certificate, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++);
  X509_gmtime_adj(X509_getm_notBefore(certificate), wish.fromNow);
  X509_gmtime_adj(X509_getm_notAfter(certificate), wish.untilNow);
  X509_set_pubkey(certificate, made.key.get());
  const std::string name = wish.names.empty() ? "Test authority" : "Test server";
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_issuer_name(certificate, X509_get_subject_name(issuer));
  AddExtension(certificate, issuer, NID_basic_constraints,
               wish.names.empty() ? "critical,CA:TRUE" : "CA:FALSE");
  if (!wish.names.empty()) AddExtension(certificate, issuer, NID_subject_alt_name, wish.names);
  EVP_PKEY* signer = authority != nullptr ? authority->key.get() : made.key.get();
  Check(X509_sign(certificate, signer, EVP_sha256()) > 0, "signature");
  return made;
}

Identity MakeAuthority() {
  return MakeIdentity({.names = ""}, nullptr);
}

std::string CertificatePem(const Identity& identity) {
  return Pem([&](BIO* memory) { return PEM_write_bio_X509(memory, identity.certificate.get()); });
}

std::string KeyPem(const Identity& identity) {
  return Pem([&](BIO* memory) {
    return PEM_write_bio_PrivateKey(memory, identity.key.get(), nullptr, nullptr, 0, nullptr, nullptr);
  });
}
