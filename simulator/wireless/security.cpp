#include "security.h"

namespace {

// RSN: version, group cipher, pairwise ciphers, authentication suites, capabilities; WPA alike without the last.
constexpr Security kSecurities[] = {
    {"open", false, ""},
    {"wep", true, ""},
    {"wpa", true, "dd16 0050f201 0100 0050f202 0100 0050f202 0100 0050f202"},
    {"wpa2", true, "3014 0100 000fac04 0100 000fac04 0100 000fac02 0000"},
    {"mixed", true,
     "3018 0100 000fac02 0200 000fac04 000fac02 0100 000fac02 0000"
     "dd1a 0050f201 0100 0050f202 0200 0050f204 0050f202 0100 0050f202"},
    {"enterprise", true, "3014 0100 000fac04 0100 000fac04 0100 000fac01 0100"},
    // Protected management frames are demanded, with their own cipher.
    {"wpa3", true, "301a 0100 000fac04 0100 000fac04 0100 000fac08 c000 0000 000fac06"},
    {"wpa3-mixed", true, "3018 0100 000fac04 0100 000fac04 0200 000fac02 000fac08 8000"},
};

}  // namespace

const Security* FindSecurity(std::string_view name) {
  for (const Security& security : kSecurities) {
    if (security.name == name) return &security;
  }
  return nullptr;
}
