// Text in ISO-8859-1 as UTF-8.
#ifndef ZQUTIL_ISO_8859_1_H
#define ZQUTIL_ISO_8859_1_H

#include <cstdint>

#include "module_api.h"

extern "C" {

// Converts the NUL-terminated source and returns the number of bytes produced. A null destination, or a size
// of 0, asks for that number alone. The output stops before the character that has no room; a NUL follows it
// where there is room for one, so a full buffer has none, and neither has one whose end cut a two-byte
// character off. `keepCData`: sections "![CDATA[" ... "]]" (the text after a "<") are copied as they are,
// whole, whatever `size` says: the destination must have room for them, and a null destination must not meet
// one.
ZQUTIL_API uint32_t iso_8859_1s_to_utf8s(unsigned char* destination, const unsigned char* source,
                                         uint32_t size, bool keepCData);

}  // extern "C"

#endif
