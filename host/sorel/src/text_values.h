// The engine's values for texts.
#ifndef SOREL_TEXT_VALUES_H
#define SOREL_TEXT_VALUES_H

#include <cstddef>

#include "jsc.h"

namespace sorel {

// The string made of the `length` bytes, which a NUL follows and none is among. Of a short text that is
// asked for again and again it is the same one each time. The caller keeps it alive. Any thread.
JSValueRef ValueOfText(JSContextRef context, const char* text, size_t length);
// The same for who has the engine's lock.
JSValueRef ValueOfTextWithLock(JSContextRef context, const char* text, size_t length);

}  // namespace sorel

#endif
