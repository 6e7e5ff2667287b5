// Services that convert and make values. Any thread; see engine.h.
#ifndef SOREL_SERVICE_VALUES_H
#define SOREL_SERVICE_VALUES_H

#include "engine.h"

namespace sorel {

// Numbers within 32 bits, cut to whole ones, and booleans.
int32_t ServiceValueToInt(zq_Value value, int32_t* integer);
int32_t ServiceValueToObject(zq_Value value, void** object);
const char* ServiceValueToString(zq_Value value, uint32_t* scratch);
int32_t ServiceNewString(const char* bytes, uint32_t length, zq_Value* value);
void* ServiceNewArray(uint32_t length, zq_Value* elements);
void* ServiceNewObject();

}  // namespace sorel

#endif
