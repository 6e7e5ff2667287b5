// Network script methods.
#include "KeyStore.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "script_values.h"

int32_t ZQUtil::GetFirstTime(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  KeyStoreValue value;
  if (!ReadKeyStore("net.firsttime", value)) return 0;
  const char* const text = value.text[0] != '\0' ? value.text : "No";
  ZQUTIL_TRACE("ZQUtil GetFirstTime returning %s\n", text);
  ReturnString(text, rval);
  return 1;
}

int32_t ZQUtil::SetFirstTime(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  const ScriptArguments arguments(argc, argv);
  if (!arguments.Present(0)) return 1;
  if (const char* const text = arguments.Text(0)) AsyncNVRAMWrite("net.firsttime", text);
  return 1;
}
