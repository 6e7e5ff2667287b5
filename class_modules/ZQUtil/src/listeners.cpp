#include "listeners.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "ZQUtilTrace.h"

namespace {

constexpr std::chrono::seconds kAwaitRequests{10};
constexpr size_t kMostArguments = 4;

std::atomic<bool> g_open = false;
std::atomic<int32_t> g_inside = 0;

// Counted first and looked at then: whoever closes sees the count or is seen by it.
bool Enter() {
  ++g_inside;
  if (g_open) return true;
  --g_inside;
  return false;
}

}  // namespace

bool TakeListener(zq_Value value, std::atomic<void*>& field) {
  const auto toObject = engine::ValueToObject();
  void* listener = nullptr;
  if (toObject == nullptr || toObject(value, &listener) == 0) return false;
  field = listener;
  return true;
}

void HoldListener(zq_Value value, const char* property) {
  if (const auto setProperty = engine::SetProperty()) setProperty(gLibObj, property, &value);
}

bool KeepListener(zq_Value value, const char* property, std::atomic<void*>& field) {
  if (!TakeListener(value, field)) return false;
  if (field != nullptr) HoldListener(value, property);
  return true;
}

void ForgetListener(const char* property, std::atomic<void*>& field) {
  if (const auto setProperty = engine::SetProperty()) {
    zq_Value none = ZQ_VALUE_NULL;
    setProperty(gLibObj, property, &none);
  }
  field = nullptr;
}

ListenerChange ChangeListener(uint32_t argc, const zq_Value* argv, const char* property,
                              std::atomic<void*>& field) {
  if (argc == 1 && argv[0] != ZQ_VALUE_VOID && argv[0] != ZQ_VALUE_NULL) {
    ZQUTIL_TRACE("ZQUtil Clearing old listener\n");
    return KeepListener(argv[0], property, field) ? ListenerChange::kKept : ListenerChange::kRefused;
  }
  if (argc != 1) {
    ZQUTIL_TRACE("ZQUtil argument miscount, clearing\n");
  } else if (argv[0] == ZQ_VALUE_VOID) {
    ZQUTIL_TRACE("ZQUtil void argument, clearing\n");
  } else {
    ZQUTIL_TRACE("ZQUtil NULL argument, clearing\n");
  }
  ForgetListener(property, field);
  return ListenerChange::kForgotten;
}

void CallListener(void* listener, const char* method) {
  const auto callMethod = engine::CallMethod();
  if (callMethod == nullptr) return;
  zq_Value ignored = ZQ_VALUE_VOID;
  callMethod(listener, method, 0, nullptr, &ignored);
}

WorkerRequest::WorkerRequest() : entered_(Enter()) {
  const auto begin = engine::BeginRequest();
  if (entered_ && begin != nullptr) begin(gLibObj);
}

WorkerRequest::~WorkerRequest() {
  if (!entered_) return;
  if (const auto end = engine::EndRequest()) end(gLibObj);
  --g_inside;
}

void WorkerRequest::Call(void* object, const char* method, std::initializer_list<zq_Value> arguments) const {
  const auto callMethod = engine::CallMethod();
  if (!entered_ || callMethod == nullptr || arguments.size() > kMostArguments) return;
  std::array<zq_Value, kMostArguments> values{};
  std::copy(arguments.begin(), arguments.end(), values.begin());
  zq_Value ignored = ZQ_VALUE_VOID;
  callMethod(object, method, static_cast<uint32_t>(arguments.size()), values.data(), &ignored);
}

void OpenWorkerRequests() {
  g_open = true;
}

void CloseWorkerRequests() {
  g_open = false;
  const auto deadline = std::chrono::steady_clock::now() + kAwaitRequests;
  while (g_inside != 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  if (g_inside != 0) ZQUTIL_TRACE("ZQUtil listeners did not return within ten seconds\n");
}
