#include "ZQUtilMethodTable.h"

#include <new>

#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "mm_env.h"

namespace {

using Member = int32_t (ZQUtil::*)(void*, uint32_t, zq_Value*, zq_Value*);

// What every wrapper does: fetch the singleton that the constructor attached to the script object, and pass on. 0 when
// none is attached. A method that runs out of memory ends there and succeeds: the host knows no exceptions.
template <typename Call>
int32_t CallSingleton(void* self, const Call& call) {
  const auto getPrivate = engine::GetPrivate();
  if (getPrivate == nullptr) return 0;
  void* attached = nullptr;
  if (getPrivate(self, &attached) != 1) return 0;
  try {
    return call(*static_cast<ZQUtil*>(attached));
  } catch (const std::bad_alloc&) {
    ZQUTIL_TRACE("ZQUtil has no memory for a call\n");
    return 1;
  }
}

int32_t CallMember(Member member, void* self, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  return CallSingleton(self, [=](ZQUtil& util) { return (util.*member)(self, argc, argv, rval); });
}

}  // namespace

#define ZQUTIL_DEFINE_WRAPPER(scriptName, declared, member)                            \
  int32_t ZQUtil_##member(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval) { \
    return CallMember(&ZQUtil::member, self, argc, argv, rval);                        \
  }
#define ZQUTIL_DEFINED_ELSEWHERE(scriptName, declared, function)
ZQUTIL_METHODS(ZQUTIL_DEFINE_WRAPPER, ZQUTIL_DEFINED_ELSEWHERE)
#undef ZQUTIL_DEFINE_WRAPPER
#undef ZQUTIL_DEFINED_ELSEWHERE

int32_t ZQUtil_GetESSIDList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  return CallSingleton(self,
                       [=](ZQUtil& util) { return util.GetESSIDList(self, argc, argv, rval, false, false); });
}

int32_t ZQUtil_GetCachedESSIDList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  return CallSingleton(self,
                       [=](ZQUtil& util) { return util.GetESSIDList(self, argc, argv, rval, true, false); });
}

#define ZQUTIL_METHOD_ROW(scriptName, declared, member) {scriptName, ZQUtil_##member, declared},
#define ZQUTIL_FUNCTION_ROW(scriptName, declared, function) {scriptName, function, declared},
const ZQUtilMethod kZQUtilMethods[] = {ZQUTIL_METHODS(ZQUTIL_METHOD_ROW, ZQUTIL_FUNCTION_ROW)};
#undef ZQUTIL_METHOD_ROW
#undef ZQUTIL_FUNCTION_ROW

const uint32_t kZQUtilMethodCount = sizeof kZQUtilMethods / sizeof kZQUtilMethods[0];
