// Whose certificates are trusted.
#ifndef ZQWWW_TRUST_H
#define ZQWWW_TRUST_H

#include <string>
#include <vector>

struct Trust {
  std::string store;               // a file or folder in place of the system's; "" is the system's
  std::vector<std::string> extra;  // files of further certificates
};

// From /etc/zqwww.ini and $ZQ_CA_FILE.
Trust ReadTrust();
Trust ReadTrust(const char* settingsFile, const char* extraFile);
// Fills the store of a TLS context (SSL_CTX*). What cannot be read is traced and leaves fewer to trust.
void ApplyTrust(const Trust& trust, void* tlsContext);

#endif
