#include "unfinished_input.h"

#include "js_text.h"

namespace sorel {
namespace {

// What the engine has against the text; "" for a script.
std::string Complaint(JSContextRef context, const std::string& text) {
  const JsText source = JsText::Of(text);
  JSValueRef error = nullptr;
  std::string complaint;
  if (JSCheckScriptSyntax(context, source.Get(), nullptr, 1, &error) || error == nullptr) return complaint;
  return ToUtf8(context, error, &complaint) ? complaint : "unknown";
}

constexpr char kMoreExpected[] = "SyntaxError: Unexpected end of script";
constexpr char kOpenText[] = "SyntaxError: Unexpected EOF";
constexpr char kOpenComment[] = "SyntaxError: Multiline comment was not closed properly";

}  // namespace

bool IsUnfinished(JSContextRef context, const std::string& text) {
  const std::string complaint = Complaint(context, text);
  if (complaint == kMoreExpected || complaint == kOpenComment) return true;
  // A template goes on over lines, a text in quotes does not; the engine says the same of both.
  if (complaint != kOpenText) return false;
  const std::string closed = Complaint(context, text + "`");
  return closed.empty() || closed == kMoreExpected;
}

}  // namespace sorel
