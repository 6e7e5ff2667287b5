// A file read and replaced whole.
#ifndef ZQ_WHOLE_FILE_H
#define ZQ_WHOLE_FILE_H

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "folder_lock.h"

struct WholeFile {
  std::string bytes;
  struct stat status;  // as of the reading
};

// The contents of a plain file. None, with errno telling why: EISDIR or EINVAL for what is no plain file,
// EFBIG when it is longer than `limit`. Never waits for a writer, as opening a pipe would.
std::optional<WholeFile> ReadWholeFile(const std::string& path, size_t limit);

// The folder of a path, "." when it names none.
std::string FolderOf(const std::string& path);

// Where the file really lies when the path names a link, also one to a file that does not exist yet.
std::string ResolveLinks(const std::string& path);

// Puts a file in the place of another in one step. The holder of the lock is the only writer of the folder;
// what one that was killed left behind is removed by the next.
class FileReplacement {
 public:
  // `path` is a file of the locked folder, and no link. Both arguments outlive this.
  FileReplacement(const FolderLock& lock, const std::string& path);
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;
  ~FileReplacement();

  // Writes the new file with the mode and, as far as the system permits, the owner of the old one; 0644 less
  // the process's mask when `old` is null: there is none. `durable`: file and name are on the disk on return.
  // False with errno, the old file in its place, when any step fails.
  bool Commit(std::string_view bytes, const struct stat* old, bool durable) const;

 private:
  void RemoveTemporaries() const;
  bool WriteTemporary(std::string_view bytes, const struct stat* old, bool durable) const;
  void PutBack(bool hadOld) const;

  const FolderLock& lock_;
  const std::string& path_;
  std::string new_;  // being written
  std::string old_;  // the old file's second name while the new one is not safe yet
};

#endif
