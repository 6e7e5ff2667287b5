// Between the engine's values and words.
#ifndef SOREL_VALUES_H
#define SOREL_VALUES_H

#include "jsc.h"
#include "scope.h"
#include "words.h"

namespace sorel {

// The word for a value that its caller keeps alive as long as `scope`.
Word WordOfRooted(JSContextRef context, Scope& scope, JSValueRef value);
// The word for a value that the scope has to keep alive.
Word WordOfProtected(JSContextRef context, Scope& scope, JSValueRef value);
// False for a handle that is out of date. Engine lock, or the value is used by the thread that has it from a
// scope.
bool ValueOf(JSContextRef context, Word word, JSValueRef* value);
// The object that a handle of either kind names; null when it is out of date or names something else. Engine
// lock.
JSObjectRef ObjectOf(JSContextRef context, Word word);

}  // namespace sorel

#endif
