#include "services.h"

#include "runtime.h"
#include "scope.h"
#include "service_objects.h"
#include "service_values.h"
#include "zq_trace.h"

namespace sorel {
namespace {

void ServiceBeginRequest(void*) {
  BeginRequestScope(Runtime::Get().Context());
}
void ServiceEndRequest(void*) {
  EndRequestScope();
}

void ServiceHostLog(const char* text) {
  static const int instance = zq_TraceCreate("sorel", __FILE__, __LINE__);
  if (text != nullptr) zq_Trace(instance, ZQ_TRACE_NORMAL, 1, true, "%s", text);
}

// The slots have the types that engine.h says: a wrong one does not compile.
template <typename Service>
Word Slot(Service service) {
  return reinterpret_cast<Word>(service);
}

}  // namespace

ServiceTable MakeServiceTable(Word classObject) {
  ServiceTable table{};
  table[ZQ_SLOT_CLASS_OBJECT] = classObject;
  table[ZQ_SLOT_DEFINE_METHOD] = Slot<zq_DefineMethod>(ServiceDefineMethod);
  table[ZQ_SLOT_VALUE_TO_INT] = Slot<zq_ValueToInt>(ServiceValueToInt);
  table[ZQ_SLOT_VALUE_TO_OBJECT] = Slot<zq_ValueToObject>(ServiceValueToObject);
  table[ZQ_SLOT_NEW_ARRAY] = Slot<zq_NewArray>(ServiceNewArray);
  table[ZQ_SLOT_SET_ELEMENT] = Slot<zq_SetElement>(ServiceSetElement);
  table[ZQ_SLOT_VALUE_TO_STRING] = Slot<zq_ValueToString>(ServiceValueToString);
  table[ZQ_SLOT_NEW_STRING] = Slot<zq_NewString>(ServiceNewString);
  table[ZQ_SLOT_NEW_OBJECT] = Slot<zq_NewObject>(ServiceNewObject);
  table[ZQ_SLOT_SET_PROPERTY] = Slot<zq_SetProperty>(ServiceSetProperty);
  table[ZQ_SLOT_CALL_METHOD] = Slot<zq_CallMethod>(ServiceCallMethod);
  table[ZQ_SLOT_CALL_METHOD_WITH_ARGS] = Slot<zq_CallMethodWithArgs>(ServiceCallMethodWithArgs);
  table[ZQ_SLOT_SET_PRIVATE] = Slot<zq_SetPrivate>(ServiceSetPrivate);
  table[ZQ_SLOT_GET_PRIVATE] = Slot<zq_GetPrivate>(ServiceGetPrivate);
  table[ZQ_SLOT_SET_FINALIZER] = Slot<zq_SetFinalizer>(ServiceSetFinalizer);
  table[ZQ_SLOT_BEGIN_REQUEST] = Slot<zq_BeginRequest>(ServiceBeginRequest);
  table[ZQ_SLOT_END_REQUEST] = Slot<zq_EndRequest>(ServiceEndRequest);
  table[ZQ_SLOT_HOST_LOG] = Slot<zq_HostLog>(ServiceHostLog);
  return table;
}

}  // namespace sorel
