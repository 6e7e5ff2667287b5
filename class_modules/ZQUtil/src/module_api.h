// Marks what ZQUtil.so exports; everything else in the module is hidden.
#ifndef ZQUTIL_MODULE_API_H
#define ZQUTIL_MODULE_API_H

// Of an exported class, what is nobody else's.
#define ZQUTIL_HIDDEN __attribute__((visibility("hidden")))
#define ZQUTIL_API __attribute__((visibility("default")))

#endif
