// Marks what libzqos exports. Everything else in the library is hidden.
#ifndef ZQ_API_H
#define ZQ_API_H

#define ZQ_API __attribute__((visibility("default")))
#define ZQ_PRINTF(text, first) __attribute__((__format__(__printf__, text, first)))

#endif
