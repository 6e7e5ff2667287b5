// The module's way to the key store.
#ifndef ZQUTIL_KEY_STORE_H
#define ZQUTIL_KEY_STORE_H

// A value as the module reads it: at most 127 characters, what is longer is cut; "" when the key is missing.
struct KeyStoreValue {
  char text[128] = {};
};

// The store, open as long as the object lives. It keeps every other thread and process waiting, and a thread that has
// it open cannot open it again. Any thread.
class KeyStore {
 public:
  KeyStore();
  KeyStore(const KeyStore&) = delete;
  KeyStore& operator=(const KeyStore&) = delete;
  ~KeyStore();

  // False when the store could not be opened: nothing else may be asked of it then.
  bool Ok() const { return handle_ != -1; }
  KeyStoreValue Read(const char* key) const;
  // False on a failure, which is the store's to trace; the old value stays then.
  bool Write(const char* key, const char* value);
  void Erase(const char* key);
  // Null erases.
  void WriteOrErase(const char* key, const char* value);

 private:
  const int handle_;
};

// Opens the store, reads the key and closes it again. False when the store cannot be opened. Any thread.
bool ReadKeyStore(const char* key, KeyStoreValue& value);

#endif
