// Reading one value of the key store.
#ifndef ZQUTIL_KEY_STORE_H
#define ZQUTIL_KEY_STORE_H

// A value as the module reads it: at most 127 characters, "" when the key is missing.
struct KeyStoreValue {
  char text[128] = {};
};

// Opens the store, reads the key and closes it again. False when the store cannot be opened. Any thread.
bool ReadKeyStore(const char* key, KeyStoreValue& value);

#endif
