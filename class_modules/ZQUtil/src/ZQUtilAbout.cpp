#include "ZQUtilAbout.h"

#include <memory>
#include <new>

#include "AboutSummary.h"
#include "SingletonHold.h"
#include "VersionSources.h"
#include "ZQUtil.h"
#include "ZQUtilMethodTable.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "listeners.h"
#include "script_values.h"
#include "zq_ini.h"
#include "zq_thread.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUtilAbout";
constexpr char kListenerProperty[] = "AboutListener";

// Nothing when the singleton or one of its parts is gone.
std::unique_ptr<AboutSummary> Gather(void* singleton) {
  const SingletonHold util(singleton);
  if (!util || util->network == nullptr || util->dateTime == nullptr) return nullptr;
  return std::make_unique<AboutSummary>(GatherAboutSummary(*util->network, *util->dateTime));
}

void* ListenerOf(void* singleton) {
  const SingletonHold util(singleton);
  return util ? util->aboutListener.load() : nullptr;
}

// The word of a new object; null when the host makes none.
zq_Value NewResponse(const AboutSummary& summary) {
  void* const object = NewScriptObject();
  if (object == nullptr) return ZQ_VALUE_NULL;
  SetAboutProperties(object, summary);
  SetVersionProperties(object, zq_GetINIFileInt(kConfigSection, "deviceid", 0, kSettingsFile));
  return ObjectValue(object);
}

// The same, with the versions alone; null also when memory runs out.
zq_Value NewVersions() try {
  void* const object = NewScriptObject();
  if (object == nullptr) return ZQ_VALUE_NULL;
  SetVersionProperties(object, 0);
  return ObjectValue(object);
} catch (const std::bad_alloc&) {
  return ZQ_VALUE_NULL;
}

void Tell(void* listener, zq_Value response) {
  const auto callMethod = engine::CallMethodWithArgs();
  if (listener != nullptr && callMethod != nullptr) callMethod(listener, "onResult", 1, &response);
}

void Answer(void* singleton) {
  std::unique_ptr<AboutSummary> summary;
  zq_Value response = ZQ_VALUE_NULL;
  try {
    summary = Gather(singleton);
    if (summary == nullptr) return;
    ZQUTIL_TRACE("ZQUtil About Dialog Thread Constructing Response Object\n");
    response = NewResponse(*summary);
  } catch (const std::bad_alloc&) {
    // The listener waits for an answer all the same.
    ZQUTIL_TRACE("ZQUtil About Dialog Thread has no memory\n");
  }
  ZQUTIL_TRACE("ZQUtil About Dialog Thread Messaging Client\n");
  Tell(ListenerOf(singleton), response);
  ZQUTIL_TRACE("ZQUtil About Dialog Thread Freeing Memory\n");
  summary.reset();
}

const char* WhatIsWrong(const ScriptArguments& arguments, const zq_Value* argv) {
  if (arguments.Count() != 1) return "Not Enough Arguments";
  return argv[0] == ZQ_VALUE_VOID ? "void argument" : "null argument";
}

}  // namespace

int32_t ZQUtil_GetVersion(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  const zq_Value versions = NewVersions();
  if (rval != nullptr) *rval = versions;
  return 1;
}

int32_t ZQUtil::RegisterAboutListener(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil Registering Software About Listener\n");
  const ScriptArguments arguments(argc, argv);
  if (arguments.Count() != 1 || !arguments.Present(0)) {
    ZQUTIL_TRACE("ZQUtil Registering Software About Listener %s\n", WhatIsWrong(arguments, argv));
    ForgetListener(kListenerProperty, aboutListener);
    return 1;
  }
  ZQUTIL_TRACE("ZQUtil Registering Software About Listener valid argument\n");
  if (!TakeListener(argv[0], aboutListener)) return 0;
  ZQUTIL_TRACE("ZQUtil Registering Software About Listener calling setmember\n");
  HoldListener(argv[0], kListenerProperty);
  ZQUTIL_TRACE("ZQUtil Registering Software About Listenerstarting thread\n");
  zq__beginthread(threadAboutDialog, this, nullptr, kSourceTag, __LINE__);
  return 1;
}

int32_t threadAboutDialog(void* singleton) {
  ZQUTIL_TRACE("ZQUtil About Dialog Thread Running\n");
  const WorkerRequest request;
  if (request) Answer(singleton);
  ZQUTIL_TRACE("ZQUtil About Dialog Thread Exiting\n");
  return 0;
}
