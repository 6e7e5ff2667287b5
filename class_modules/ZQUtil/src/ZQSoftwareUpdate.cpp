#include "ZQSoftwareUpdate.h"

#include "SoftwareUpdateList.h"
#include "ZQUpdateDownload.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "listeners.h"
#include "script_values.h"
#include "zq_timer.h"

std::atomic<bool> updateAvailable = false;
std::atomic<void*> updateListener = nullptr;
std::atomic<int32_t> currentUpdateId = 0;
std::atomic<int32_t> assignedDeviceId = 0;
std::atomic<int32_t> updateCounter = 0;

namespace {

constexpr char kListenerProperty[] = "UpdateListener";
constexpr uint32_t kFirstCheckMs = 4000;

// {"ID": id, "Name": comment}; null when the host cannot make it.
void* NewUpdateObject(const OfferedUpdate& update) {
  void* const object = NewScriptObject();
  if (object == nullptr) return nullptr;
  SetValueProperty(object, "ID", ZQ_VALUE_FROM_INT(update.id));
  SetTextProperty(object, "Name", update.comment.c_str());
  return object;
}

}  // namespace

int32_t ZQUtil::RegisterUpdateListener(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil Registering Software Update Listener\n");
  const ScriptArguments arguments(argc, argv);
  if (arguments.Count() != 1 || !arguments.Present(0)) {
    ForgetListener(kListenerProperty, updateListener);
    return 1;
  }
  if (!KeepListener(argv[0], kListenerProperty, updateListener)) return 0;
  ZQUTIL_TRACE("ZQUtil Setting timer to check for software updates\n");
  zq_TimerSet(ZQUtilMsgQHandle, kFirstCheckMs, kTimerSoftwareUpdate, 0, 0, 0, "Initial Software Update Timer",
              false);
  return 1;
}

int32_t ZQUtil::GetUpdateList(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetUpdateList\n");
  const auto newArray = engine::NewArray();
  void* const array = newArray != nullptr ? newArray(0, nullptr) : nullptr;
  if (array == nullptr) return 1;
  const SoftwareUpdateListReader list;
  const auto setElement = engine::SetElement();
  uint32_t index = 0;
  for (const OfferedUpdate& update : list.Updates()) {
    ZQUTIL_TRACE("ZQUtil Returning %d, %s\n", update.id, update.comment.c_str());
    void* const object = NewUpdateObject(update);
    if (object == nullptr || setElement == nullptr) continue;
    auto element = reinterpret_cast<zq_Value>(object);
    setElement(array, index++, &element);
  }
  if (rval != nullptr) *rval = reinterpret_cast<zq_Value>(array);
  return 1;
}

int32_t ZQUtil::BeginUpdate(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  const ScriptArguments arguments(argc, argv);
  const auto toInt = engine::ValueToInt();
  int32_t id = 0;
  if (!arguments.Present(0) || toInt == nullptr || toInt(argv[0], &id) == 0) return 1;
  ZQUTIL_TRACE("ZQUtil Request to begin update %d\n", id);
  std::string path;
  {
    const SoftwareUpdateListReader list;
    const OfferedUpdate* const update = list.Find(id);
    if (update == nullptr) return 1;
    path = update->path;
  }
  currentUpdateId = id;
  ZQUTIL_TRACE("ZQUtil Starting update %s\n", path.c_str());
  DownloadUpdate(path.c_str());
  return 1;
}

void CallUpdateListener(const char* method) {
  if (updateListener == nullptr) return;
  const WorkerRequest request;
  // Asked for within the request: a listener that another took the place of before may be gone by now.
  if (void* const listener = updateListener) request.Call(listener, method);
}

void CallUpdateListener(const char* method, int32_t number) {
  if (updateListener == nullptr) return;
  const WorkerRequest request;
  if (void* const listener = updateListener) request.Call(listener, method, {ZQ_VALUE_FROM_INT(number)});
}
