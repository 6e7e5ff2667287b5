// Around one write by the library: what the copies were, whether the disk has the new bytes, and the way
// back.
#ifndef ZQ_NVRAM_WRITE_GUARD_H
#define ZQ_NVRAM_WRITE_GUARD_H

#include <memory>
#include <string>
#include <vector>

#include "copy_file.h"

class WriteGuard {
 public:
  explicit WriteGuard(const StoreConfig& config);

  // Each returns why it failed, or "". Copies on flash are passed over: their driver has written what it
  // took.
  std::string Begin();     // reads the copies
  std::string Commit();    // the disk has taken every byte since Begin
  std::string RollBack();  // the copies are as at Begin
  // The most room that ".flags" takes, see copy_image.h.
  size_t FlagsRoom() const;

 private:
  struct Copy {
    std::unique_ptr<OpenCopy> file;
    Bytes before;
  };

  const StoreConfig& config_;
  std::vector<Copy> copies_;
};

#endif
