// Error numbers by the names that a person writes.
#ifndef ZQSIM_ERROR_NAME_H
#define ZQSIM_ERROR_NAME_H

#include <cerrno>
#include <string_view>

// "works" is 0. False, and `error` as it was, for a name that is none of these.
constexpr bool ReadErrorName(std::string_view name, int* error) {
  struct ErrorName {
    std::string_view name;
    int number;
  };
  constexpr ErrorName kNames[] = {{"works", 0},
                                  {"EPERM", EPERM},
                                  {"ENOENT", ENOENT},
                                  {"EINTR", EINTR},
                                  {"EIO", EIO},
                                  {"ENXIO", ENXIO},
                                  {"E2BIG", E2BIG},
                                  {"EBADF", EBADF},
                                  {"EAGAIN", EAGAIN},
                                  {"ENOMEM", ENOMEM},
                                  {"EACCES", EACCES},
                                  {"EFAULT", EFAULT},
                                  {"EBUSY", EBUSY},
                                  {"ENODEV", ENODEV},
                                  {"EINVAL", EINVAL},
                                  {"ENOTTY", ENOTTY},
                                  {"ENOSPC", ENOSPC},
                                  {"ENODATA", ENODATA},
                                  {"EPROTO", EPROTO},
                                  {"EOPNOTSUPP", EOPNOTSUPP},
                                  {"ENETDOWN", ENETDOWN},
                                  {"ENOBUFS", ENOBUFS},
                                  {"ETIMEDOUT", ETIMEDOUT},
                                  {"ENOLINK", ENOLINK},
                                  {"EADDRNOTAVAIL", EADDRNOTAVAIL}};
  for (const ErrorName& known : kNames) {
    if (known.name != name) continue;
    *error = known.number;
    return true;
  }
  return false;
}

#endif
