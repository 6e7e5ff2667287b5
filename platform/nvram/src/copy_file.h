// One copy on a regular file: read, written in place, made.
#ifndef ZQ_NVRAM_COPY_FILE_H
#define ZQ_NVRAM_COPY_FILE_H

#include <string>

#include "copy_image.h"
#include "mending.h"
#include "store_config.h"

struct CopyReading {
  CopyState state;
  Bytes image;      // of Good and Damaged
  std::string why;  // the path and what is wrong with the copy; "" when Good
};

CopyReading ReadCopy(const CopyPlace& place, bool redundant);

// Makes the file in one step, its name on the disk too; with the mode of the file `like`, or for its owner
// alone when there is none. Returns why it cannot, or "".
std::string MakeCopy(const CopyPlace& place, const Bytes& image, const std::string& like);

// A copy held open to be written in place. A failure of the disk after the opening is reported by Sync,
// whoever wrote the bytes.
class OpenCopy {
 public:
  // When it cannot be opened, every call reports it.
  explicit OpenCopy(const CopyPlace& place);
  OpenCopy(const OpenCopy&) = delete;
  OpenCopy& operator=(const OpenCopy&) = delete;
  ~OpenCopy();

  // These return why they cannot, with the path, or "".
  std::string Write(const Bytes& image) const;  // on the disk when it returns
  std::string Sync() const;

 private:
  std::string Why(const char* what) const;

  const CopyPlace place_;
  int fd_;
  int reason_ = 0;  // errno of the opening
};

#endif
