#include "library_context.h"

#include <cerrno>
#include <cstring>

#include "uboot_library.h"

LibraryContext::~LibraryContext() {
  Close();
}

void LibraryContext::Close() {
  if (context_ == nullptr) return;
  // Also after a failed opening, which has taken the lock.
  libuboot_close(context_);
  libuboot_exit(context_);
  context_ = nullptr;
}

int LibraryContext::Open(const std::string& configPath, std::string& why) {
  Close();
  int result = libuboot_initialize(&context_, nullptr);
  if (result == 0) result = libuboot_read_config(context_, configPath.c_str());
  if (result != 0) {
    why = "cannot use the copies that " + configPath + " names: " + strerror(-result);
    Close();
    return result;
  }
  result = libuboot_open(context_);
  if (result == -ENODATA)
    why = "no good copy is left";
  else if (result != 0)
    why = "cannot read the copies that " + configPath + " names: " + strerror(-result);
  return result;
}
