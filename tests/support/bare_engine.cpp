#include "bare_engine.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

BareEngine* g_engine = nullptr;

bool IsInteger(zq_Value value) {
  return value != ZQ_VALUE_VOID && (value & 1U) != 0;
}

int32_t IntegerOf(zq_Value value) {
  return static_cast<int32_t>(static_cast<uint32_t>(value)) >> 1;
}

}  // namespace

struct BareEngineServices {
  using Object = BareEngine::Object;

  static std::unique_lock<std::recursive_mutex> Lock() { return std::unique_lock(g_engine->mutex_); }

  static Object* Find(const void* handle) {
    const auto found = g_engine->objects_.find(handle);
    return found != g_engine->objects_.end() ? found->second.get() : nullptr;
  }

  static std::pair<std::string, uint32_t>* FindString(zq_Value value) {
    const auto found = g_engine->strings_.find(value);
    return found != g_engine->strings_.end() ? found->second.get() : nullptr;
  }

  static int32_t DefineMethod(void* object, const char* name, zq_NativeMethod method, uint32_t declared) {
    const auto lock = Lock();
    Object* const target = Find(object);
    if (target == nullptr) return 0;
    target->methods[name] = {method, declared};
    target->methodOrder.emplace_back(name);
    return 1;
  }

  static int32_t ValueToInt(zq_Value value, int32_t* integer) {
    if (!IsInteger(value)) return 0;
    *integer = IntegerOf(value);
    return 1;
  }

  static int32_t ValueToObject(zq_Value value, void** object) {
    const auto lock = Lock();
    Object* const found = Find(reinterpret_cast<void*>(value));
    if (found == nullptr) return 0;
    *object = found;
    return 1;
  }

  static void* NewObject() { return &g_engine->NewObject(); }
  static void* NewArray(uint32_t /*length*/, zq_Value* /*elements*/) { return &g_engine->NewObject(); }

  static int32_t SetElement(void* array, uint32_t index, zq_Value* value) {
    const auto lock = Lock();
    Object* const target = Find(array);
    if (target == nullptr) return 0;
    target->elements[index] = *value;
    return 1;
  }

  static const char* ValueToString(zq_Value value, uint32_t* scratch) {
    const auto lock = Lock();
    if (*scratch != 0) std::abort();  // the caller zeroes it
    *scratch = 0xFFFFFFFFU;
    if (const auto* string = FindString(value)) return string->first.c_str();
    if (value == ZQ_VALUE_VOID) return "undefined";
    if (value == ZQ_VALUE_NULL) return "null";
    const std::string text = IsInteger(value) ? std::to_string(IntegerOf(value)) : "[object Object]";
    return FindString(g_engine->String(text))->first.c_str();
  }

  static int32_t NewString(const char* bytes, uint32_t length, zq_Value* value) {
    const auto lock = Lock();
    if (length == 0 || bytes[length - 1] != '\0') std::abort();  // lengths count the NUL
    *value = g_engine->String(std::string(bytes, length - 1));
    FindString(*value)->second = length;
    return 1;
  }

  static int32_t SetProperty(void* object, const char* name, zq_Value* value) {
    const auto lock = Lock();
    Object* const target = Find(object);
    if (target == nullptr) return 0;
    if (target->properties.count(name) == 0) target->order.emplace_back(name);
    target->properties[name] = *value;
    return 1;
  }

  static int32_t CallMethodWithArgs(void* object, const char* name, uint32_t argc, zq_Value* argv) {
    const auto lock = Lock();
    if (Find(object) == nullptr) return 0;
    std::string& calls = g_engine->calls_;
    calls += std::string(calls.empty() ? "" : ",") + name + "(";
    for (uint32_t i = 0; i < argc; ++i) calls += (i > 0 ? "," : "") + g_engine->Show(argv[i]);
    calls += ")";
    return 1;
  }

  static int32_t CallMethod(void* object, const char* name, uint32_t argc, zq_Value* argv, zq_Value* rval) {
    if (rval != nullptr) *rval = ZQ_VALUE_VOID;
    return CallMethodWithArgs(object, name, argc, argv);
  }

  static int32_t SetPrivate(void* object, void** pointer) {
    const auto lock = Lock();
    Object* const target = Find(object);
    if (target == nullptr) return 0;
    target->attached = *pointer;
    target->hasPrivate = true;
    return 1;
  }

  static int32_t GetPrivate(void* object, void** pointer) {
    const auto lock = Lock();
    const Object* const target = Find(object);
    if (target == nullptr || !target->hasPrivate) return 0;
    *pointer = target->attached;
    return 1;
  }

  static int32_t SetFinalizer(void* object, zq_Finalizer finalizer) {
    const auto lock = Lock();
    Object* const target = Find(object);
    if (target == nullptr) return 0;
    target->finalizer = finalizer;
    return 1;
  }

  static void BeginRequest(void* classObject) { Note("<begin>", classObject); }
  static void EndRequest(void* classObject) { Note("<end>", classObject); }

  static void Note(const char* what, const void* classObject) {
    const auto lock = Lock();
    if (classObject != g_engine->classObject_) std::abort();
    g_engine->calls_ += what;
  }

  static void HostLog(const char* text) {
    const auto lock = Lock();
    g_engine->log_ += text;
  }
};

BareEngine::BareEngine() : table_(ZQ_ENGINE_SLOTS + 32, 0) {
  if (g_engine != nullptr) throw std::logic_error("one bare engine at a time");
  g_engine = this;
  classObject_ = &NewObject();
  using S = BareEngineServices;
  const auto set = [this](zq_EngineSlot slot, auto service) {
    table_[slot] = reinterpret_cast<uintptr_t>(service);
  };
  set(ZQ_SLOT_CLASS_OBJECT, classObject_);
  set(ZQ_SLOT_DEFINE_METHOD, S::DefineMethod);
  set(ZQ_SLOT_VALUE_TO_INT, S::ValueToInt);
  set(ZQ_SLOT_VALUE_TO_OBJECT, S::ValueToObject);
  set(ZQ_SLOT_NEW_ARRAY, S::NewArray);
  set(ZQ_SLOT_SET_ELEMENT, S::SetElement);
  set(ZQ_SLOT_VALUE_TO_STRING, S::ValueToString);
  set(ZQ_SLOT_NEW_STRING, S::NewString);
  set(ZQ_SLOT_NEW_OBJECT, S::NewObject);
  set(ZQ_SLOT_SET_PROPERTY, S::SetProperty);
  set(ZQ_SLOT_CALL_METHOD, S::CallMethod);
  set(ZQ_SLOT_CALL_METHOD_WITH_ARGS, S::CallMethodWithArgs);
  set(ZQ_SLOT_SET_PRIVATE, S::SetPrivate);
  set(ZQ_SLOT_GET_PRIVATE, S::GetPrivate);
  set(ZQ_SLOT_SET_FINALIZER, S::SetFinalizer);
  set(ZQ_SLOT_BEGIN_REQUEST, S::BeginRequest);
  set(ZQ_SLOT_END_REQUEST, S::EndRequest);
  set(ZQ_SLOT_HOST_LOG, S::HostLog);
}

BareEngine::~BareEngine() {
  g_engine = nullptr;
}

BareEngine::Object& BareEngine::NewObject() {
  const std::lock_guard lock(mutex_);
  auto object = std::make_unique<Object>();
  Object* const handle = object.get();
  return *(objects_[handle] = std::move(object));
}

zq_Value BareEngine::String(const std::string& text) {
  const std::lock_guard lock(mutex_);
  auto string = std::make_unique<std::pair<std::string, uint32_t>>(text, 0);
  const auto word = reinterpret_cast<zq_Value>(string.get());
  strings_[word] = std::move(string);
  return word;
}

std::string BareEngine::Show(zq_Value value) {
  const std::lock_guard lock(mutex_);
  if (value == ZQ_VALUE_VOID) return "<void>";
  if (value == ZQ_VALUE_NULL) return "<null>";
  if (IsInteger(value)) return "<int " + std::to_string(IntegerOf(value)) + ">";
  if (const auto* string = BareEngineServices::FindString(value)) return string->first;
  if (BareEngineServices::Find(reinterpret_cast<void*>(value)) != nullptr) return "<object>";
  return "<unknown word>";
}

uint32_t BareEngine::LengthGiven(zq_Value value) {
  const std::lock_guard lock(mutex_);
  const auto* string = BareEngineServices::FindString(value);
  return string != nullptr ? string->second : 0;
}

BareEngine::Object& BareEngine::Construct(int32_t* result, zq_Value* rval) {
  Object& object = NewObject();
  const int32_t handled = Call(object, "constructor", {}, rval);
  if (result != nullptr) *result = handled;
  return object;
}

int32_t BareEngine::Finalize(Object& object) {
  const zq_Finalizer finalizer = std::exchange(object.finalizer, nullptr);
  return finalizer != nullptr ? finalizer(&object) : -1;
}

int32_t BareEngine::Call(Object& self, const std::string& method, std::vector<zq_Value> arguments,
                         zq_Value* rval) {
  zq_NativeMethod native = nullptr;
  {
    const std::lock_guard lock(mutex_);
    const auto found = classObject_->methods.find(method);
    if (found == classObject_->methods.end()) return -1;
    native = found->second.first;
  }
  return native(&self, static_cast<uint32_t>(arguments.size()),
                arguments.empty() ? nullptr : arguments.data(), rval);
}

std::string BareEngine::Answer(Object& self, const std::string& method, std::vector<zq_Value> arguments) {
  zq_Value result = ZQ_VALUE_VOID;
  const int32_t handled = Call(self, method, std::move(arguments), &result);
  if (handled != 1) return "<returned " + std::to_string(handled) + ">";
  return Show(result);
}

std::string BareEngine::TakeLog() {
  const std::lock_guard lock(mutex_);
  return std::exchange(log_, {});
}

std::string BareEngine::TakeCalls() {
  const std::lock_guard lock(mutex_);
  return std::exchange(calls_, {});
}
