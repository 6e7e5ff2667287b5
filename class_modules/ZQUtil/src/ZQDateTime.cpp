// The settings of the clock. The list of time zones is in TimeZoneList.cpp.
#include "ZQDateTime.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "KeyStore.h"
#include "TriggerFile.h"
#include "ZQUtilTrace.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQDateTime";
constexpr char kDateFile[] = "/etc/datetime";
constexpr size_t kDateCharacters = 12;

// The stored text, or the fallback for "" and for a missing one; null when the store cannot be opened.
char* NewStoredText(const char* key, const char* fallback) {
  KeyStoreValue value;
  if (!ReadKeyStore(key, value)) return nullptr;
  return zq__newString(value.text[0] != '\0' ? value.text : fallback, kSourceTag, __LINE__);
}

// False when the store cannot be opened. Null erases the key.
bool Store(const char* key, const char* value) {
  KeyStore store;
  if (!store.Ok()) return false;
  store.WriteOrErase(key, value);
  return true;
}

const char* NullIfEmpty(const char* text) {
  return text != nullptr && *text != '\0' ? text : nullptr;
}

void WriteDate(const char* text) {
  std::FILE* const file = std::fopen(kDateFile, "we");
  if (file == nullptr) {
    ZQUTIL_TRACE("ZQUtil cannot open %s\n", kDateFile);
    return;
  }
  ZQUTIL_TRACE("ZQUtil Writing date/time %s\n", text);
  std::fwrite(text, 1, kDateCharacters, file);
  std::fclose(file);
}

}  // namespace

// The two flags have opposite defaults: a device keeps its clock right, and shows 12 hours, until it is told otherwise.
bool ZQDateTime::isNTPEnabled() {
  KeyStoreValue value;
  return ReadKeyStore("net.ntpenabled", value) && strcasecmp(value.text, "no") != 0;
}

void ZQDateTime::setNTPEnabled(bool enabled) {
  if (Store("net.ntpenabled", enabled ? "YES" : "NO")) restartDateTime();
}

bool ZQDateTime::isMilitaryTimeEnabled() {
  KeyStoreValue value;
  return ReadKeyStore("net.mte", value) && strcasecmp(value.text, "yes") == 0;
}

void ZQDateTime::setMilitaryTimeEnabled(bool enabled) {
  if (Store("net.mte", enabled ? "YES" : "NO")) restartDateTime();
}

char* ZQDateTime::getPrimaryNTPServer() {
  return NewStoredText("net.priNTP", kDefaultPrimaryNTPServer);
}

void ZQDateTime::setPrimaryNTPServer(const char* host) {
  if (Store("net.priNTP", NullIfEmpty(host))) restartDateTime();
}

char* ZQDateTime::getSecondaryNTPServer() {
  return NewStoredText("net.secNTP", kDefaultSecondaryNTPServer);
}

void ZQDateTime::setSecondaryNTPServer(const char* host) {
  if (Store("net.secNTP", NullIfEmpty(host))) restartDateTime();
}

char* ZQDateTime::getTZ() {
  char* const path = NewStoredText("sys.tz", "");
  ZQUTIL_TRACE("ZQUtil getTZ returning %s\n", path != nullptr ? path : "NULL");
  return path;
}

void ZQDateTime::setTZ(const char* path) {
  if (Store("sys.tz", path)) restartDateTime();
}

void ZQDateTime::setTime(const char* text) {
  if (text == nullptr) return;
  ZQUTIL_TRACE("ZQUtil Checking string length 12 %s\n", text);
  if (std::strlen(text) == kDateCharacters) WriteDate(text);
  restartDateTime();
}

void ZQDateTime::restartDateTime() {
  RaiseTrigger("/tmp/do_time");
}
