#include "ZQFileUtilities.h"

#include <sys/stat.h>

#include <cstring>
#include <new>
#include <string>

#include "zq_file.h"

namespace {

bool IsFolder(const char* path) {
  struct stat status = {};
  return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// Where the last component begins, its trailing slashes being its own; at the end when there is none.
const char* LastComponent(const char* path) {
  const char* component = path + std::strspn(path, "/");
  for (const char* next = component; *next != '\0';) {
    component = next;
    next += std::strcspn(next, "/");
    next += std::strspn(next, "/");
  }
  return component;
}

}  // namespace

void ZQString_appendCharacter(_ZqString* string, char character) {
  const char text[] = {character, '\0'};
  zq_StringAppend(string, text);
}

size_t ZQTrimmedPathLength(const char* path) {
  size_t length = std::strlen(path);
  while (length > 1 && path[length - 1] == '/') --length;
  return length;
}

_ZqString* ZQBasename(const char* path) {
  const char* const component = LastComponent(path);
  const char* const from = *component != '\0' ? component : path;
  size_t length = ZQTrimmedPathLength(from);
  if (*component != '\0' && from[length] == '/') ++length;
  _ZqString* const name = zq_StringCreate(length);
  zq_StringAppendBytes(name, from, length);
  return name;
}

bool ZQCopyFile(const char* source, const char* destination) try {
  std::string target = destination;
  if (*source != '\0' && IsFolder(destination)) {
    _ZqString* const name = ZQBasename(source);
    target.append("/").append(zq_StringText(name));
    zq_StringDestroy(name);
  }
  return zq_CopyFile(source, target.c_str(), true);
} catch (const std::bad_alloc&) {
  return false;
}
