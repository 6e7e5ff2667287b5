// A path argument of a call, turned into the path that the kernel shall see.
#ifndef ZQSIM_MAPPED_PATH_H
#define ZQSIM_MAPPED_PATH_H

#include <climits>
#include <string_view>

// What the call does with the path; decides whose a shared path is, and what a driver's folder refuses.
enum class Use {
  kLook,    // read, list, examine, execute
  kChange,  // write to, or change the attributes of, what is there
  kCreate,  // make an entry: ENOENT among the driver files, EEXIST when it is there
  kRemove   // take an entry away: EPERM among the driver files
};

// Lives on the stack of one call. Keeps errno unless it fails.
class MappedPath {
 public:
  // `path` may be null or relative: it stays as it is.
  MappedPath(const char* path, Use use);
  MappedPath(const MappedPath&) = delete;
  MappedPath& operator=(const MappedPath&) = delete;

  // False, and errno says why, when the call must fail without being made.
  bool Ok() const { return ok_; }
  const char* Text() const { return text_; }
  // True when the path was turned into one under the device's root.
  bool OnDevice() const { return text_ == buffer_; }
  // True when it was, and names a driver's file.
  bool IsDriver() const { return driver_; }
  // True when there is something of that name.
  bool Exists() const;

 private:
  bool Map(const char* path, Use use);
  // Whether there is something at so many characters of the buffer.
  bool BeginningExists(size_t length);
  bool Allowed(Use use) const;

  const char* text_;
  bool ok_ = true;
  bool driver_ = false;
  char buffer_[PATH_MAX];
};

// What a process on the device sees in place of a path that the kernel gave: cuts the device's root off in
// place. Returns the new length; text[length] is a NUL then if it was one before. A path that the device does
// not see from inside stays.
size_t ShowFromDevice(char* text, size_t length);

// True when the absolute path names something by its place under the device's root: what it leads to is then
// reported the same way.
bool NamesRoot(const char* path);

#endif
