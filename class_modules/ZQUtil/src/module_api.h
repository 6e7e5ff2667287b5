// Marks what ZQUtil.so exports; everything else in the module is hidden.
#ifndef ZQUTIL_MODULE_API_H
#define ZQUTIL_MODULE_API_H

#define ZQUTIL_API __attribute__((visibility("default")))

#endif
