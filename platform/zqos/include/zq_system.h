// Facts about the platform. Any thread.
#ifndef ZQ_SYSTEM_H
#define ZQ_SYSTEM_H

#include <stddef.h>
#include <stdint.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

// Seconds since the month began, in UTC, so that neither a time zone nor summer time makes it jump.
ZQ_API uint32_t zq_SecondsIntoMonth(void);
// The platform's version; at most size - 1 characters and a NUL. Returns the length of the whole text.
ZQ_API size_t zqOS_GetVersion(char* buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif
