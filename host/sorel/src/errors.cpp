#include "errors.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "js_text.h"
#include "output.h"
#include "properties.h"
#include "runtime.h"
#include "script_turn.h"
#include "show.h"

namespace sorel {
namespace {

// The property as text; empty when it is missing or empty.
std::string TextProperty(JSContextRef context, JSObjectRef object, const char* name) {
  JSValueRef value = GetProperty(context, object, name);
  std::string text;
  if (value == nullptr || JSValueIsUndefined(context, value)) return {};
  return ToUtf8(context, value, &text) ? text : std::string();
}

std::string Position(JSContextRef context, JSValueRef thrown) {
  if (!JSValueIsObject(context, thrown)) return {};
  JSObjectRef error = JSValueToObject(context, thrown, nullptr);
  const std::string file = TextProperty(context, error, "sourceURL");
  if (file.empty()) return {};
  const std::string line = TextProperty(context, error, "line");
  if (line.empty()) return file + ": ";
  // Of a syntax error the engine knows the line alone; the column is that of the call which loaded the script. Any
  // other error's place is in its stack.
  const std::string place = file + ":" + line + ":" + TextProperty(context, error, "column");
  std::istringstream stack(TextProperty(context, error, "stack"));
  for (std::string frame; std::getline(stack, frame);) {
    if (frame.ends_with(place)) return place + ": ";
  }
  return file + ":" + line + ": ";
}

}  // namespace

JSValueRef MakeError(JSContextRef context, const std::string& message) {
  JSValueRef argument = MakeJsValue(context, message);
  return JSObjectMakeError(context, 1, &argument, nullptr);
}

JSValueRef Unwind(JSContextRef context, JSValueRef* exception) {
  // The exception takes the script out of this call; should it catch that, the engine's limit ends it soon
  // after.
  Runtime::Get().RestoreLimit();
  *exception = MakeError(context, "the program ends");
  return JSValueMakeUndefined(context);
}

std::string DescribeError(JSContextRef context, JSValueRef thrown) {
  std::string text;
  if (!ToUtf8(context, thrown, &text)) text = "an error that has no text";
  // What says nothing of an object's contents.
  if (text == "[object Object]") text = Show(context, thrown);
  std::replace(text.begin(), text.end(), '\n', ' ');
  return Position(context, thrown) + text;
}

std::string DescribeErrorWithStack(JSContextRef context, JSValueRef thrown) {
  std::string report = DescribeError(context, thrown) + "\n";
  if (!JSValueIsObject(context, thrown)) return report;
  std::istringstream stack(TextProperty(context, JSValueToObject(context, thrown, nullptr), "stack"));
  for (std::string line; std::getline(stack, line);) report += "    " + line + "\n";
  return report;
}

void ReportError(JSContextRef context, JSValueRef thrown) {
  const ScriptTurn turn;
  if (Runtime::Get().ExitRequested()) return;
  FlushOutput();
  const std::string report = DescribeErrorWithStack(context, thrown);
  fwrite(report.data(), 1, report.size(), stderr);
}

}  // namespace sorel
