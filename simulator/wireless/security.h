// What an access point advertises by the security that it is set to.
#ifndef ZQSIM_SECURITY_H
#define ZQSIM_SECURITY_H

#include <cstdint>
#include <string_view>

struct Security {
  std::string_view name;
  bool wantsKey;
  std::string_view elements;  // information elements in hexadecimal, one after the other
};

// Null for a name that is none.
const Security* FindSecurity(std::string_view name);

#endif
