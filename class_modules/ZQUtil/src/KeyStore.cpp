#include "KeyStore.h"

#include "ZQUtilPersistence.h"
#include "nvram.h"

KeyStore::KeyStore() : handle_(nvram_open(0, 0)) {}

KeyStore::~KeyStore() {
  if (Ok()) nvram_close(handle_);
}

KeyStoreValue KeyStore::Read(const char* key) const {
  KeyStoreValue value;
  nvram_read_key(handle_, nullptr, key, value.text, sizeof value.text);
  return value;
}

bool KeyStore::Write(const char* key, const char* value) {
  return my_nvram_write_key(handle_, nullptr, key, value) == 0;
}

void KeyStore::Erase(const char* key) {
  nvram_erase_key(handle_, nullptr, key);
}

void KeyStore::WriteOrErase(const char* key, const char* value) {
  if (value != nullptr) {
    Write(key, value);
  } else {
    Erase(key);
  }
}

bool ReadKeyStore(const char* key, KeyStoreValue& value) {
  value = {};
  const KeyStore store;
  if (!store.Ok()) return false;
  value = store.Read(key);
  return true;
}
