#include "KeyStore.h"

#include "nvram.h"

bool ReadKeyStore(const char* key, KeyStoreValue& value) {
  value = {};
  const int store = nvram_open(0, 0);
  if (store == -1) return false;
  nvram_read_key(store, nullptr, key, value.text, sizeof value.text);
  nvram_close(store);
  return true;
}
