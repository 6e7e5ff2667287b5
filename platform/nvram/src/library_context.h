// The library's view of the store; closed, and its lock given back, at the end.
#ifndef ZQ_NVRAM_LIBRARY_CONTEXT_H
#define ZQ_NVRAM_LIBRARY_CONTEXT_H

#include <string>

struct uboot_ctx;

class LibraryContext {
 public:
  LibraryContext() = default;
  LibraryContext(const LibraryContext&) = delete;
  LibraryContext& operator=(const LibraryContext&) = delete;
  ~LibraryContext();

  // Waits for the lock and reads the store, once more if it was open. Returns 0, or the library's negative
  // errno with the reason in `why`; -ENODATA, the context usable for a write, when no copy is good.
  int Open(const std::string& configPath, std::string& why);
  uboot_ctx* Get() const { return context_; }

 private:
  void Close();

  uboot_ctx* context_ = nullptr;
};

#endif
