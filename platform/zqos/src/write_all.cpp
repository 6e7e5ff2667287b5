#include "write_all.h"

#include <unistd.h>

#include <cerrno>

size_t WriteAll(int descriptor, const void* bytes, size_t count) {
  const char* next = static_cast<const char*>(bytes);
  size_t done = 0;
  while (done < count) {
    const ssize_t written = write(descriptor, next + done, count - done);
    if (written > 0) {
      done += static_cast<size_t>(written);
    } else if (written == 0) {
      errno = ENOSPC;
      break;
    } else if (errno != EINTR) {
      break;
    }
  }
  return done;
}
