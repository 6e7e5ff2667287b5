#include "trust.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <filesystem>

#include "www_trace.h"
#include "zq_ini.h"

namespace {

// Not among the settings files of scripts: those are theirs to write.
constexpr char kSettingsFile[] = "/etc/zqwww.ini";
constexpr char kSection[] = "tls";

std::string Setting(const char* file, const char* key) {
  char value[PATH_MAX + 1] = {};
  zq_GetINIFileString(kSection, key, "", value, PATH_MAX, file);
  return value;
}

bool IsFolder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void Load(X509_STORE* store, const std::string& path) {
  const int loaded =
      IsFolder(path) ? X509_STORE_load_path(store, path.c_str()) : X509_STORE_load_file(store, path.c_str());
  if (loaded != 1) WwwFailure("no certificates to trust in %s\n", path.c_str());
  ERR_clear_error();
}

// Whether the folder has certificates under their hashed names, which are read only as they are needed.
bool HasHashedNames(const std::string& folder) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".0") return true;
  }
  return false;
}

// The system's folder where there is one; its bundle has the same, but all of it is read for each connection. What the
// folder holds is looked at only where there is a choice.
void LoadSystems(X509_STORE* store) {
  const char* folder = X509_get_default_cert_dir();
  const char* bundle = X509_get_default_cert_file();
  const bool hasBundle = access(bundle, F_OK) == 0;
  if (hasBundle ? HasHashedNames(folder) : IsFolder(folder)) {
    Load(store, folder);
  } else if (hasBundle) {
    Load(store, bundle);
  }
}

}  // namespace

Trust ReadTrust() {
  return ReadTrust(kSettingsFile, getenv("ZQ_CA_FILE"));
}

Trust ReadTrust(const char* settingsFile, const char* extraFile) {
  Trust trust;
  trust.store = Setting(settingsFile, "trust_store");
  const std::string extra = Setting(settingsFile, "extra_ca");
  if (!extra.empty()) trust.extra.push_back(extra);
  if (extraFile != nullptr && *extraFile != '\0') trust.extra.emplace_back(extraFile);
  return trust;
}

void ApplyTrust(const Trust& trust, void* tlsContext) {
  X509_STORE* store = SSL_CTX_get_cert_store(static_cast<SSL_CTX*>(tlsContext));
  if (!trust.store.empty()) {
    Load(store, trust.store);
  } else {
    LoadSystems(store);
  }
  for (const std::string& file : trust.extra) Load(store, file);
}
