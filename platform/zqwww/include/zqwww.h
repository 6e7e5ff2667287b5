// libzqwww: the platform's HTTP library.
#ifndef ZQWWW_H
#define ZQWWW_H

#ifdef __cplusplus
extern "C" {
#endif

#define ZQWWW_API __attribute__((visibility("default")))

// Prepares the transport and TLS libraries for the process. Counted: each call is paired with one zqwww_term.
// Returns 1, or 0 when they cannot be prepared. Any thread.
ZQWWW_API int zqwww_init(void);
// The last one gives back what the libraries hold. Without an init before, does nothing.
ZQWWW_API void zqwww_term(void);

#ifdef __cplusplus
}

// One HTTP exchange. The library calls back on a thread of its own, so an object is destroyed by a message to
// its owner's queue and not from within a callback.
class ZQWWW_API HTTP {
 public:
  HTTP();
  HTTP(const HTTP&) = delete;
  HTTP& operator=(const HTTP&) = delete;
  virtual ~HTTP();
};
#endif

#endif
