#include "completion.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "js_text.h"
#include "script.h"
#include "script_turn.h"

namespace sorel {
namespace {

constexpr const char* kNamesOf = R"js((function(object, prefix) {
  const names = new Set();
  for (let o = object == null ? null : Object(object); o; o = Object.getPrototypeOf(o))
    for (const name of prefix || o !== Object.prototype ? Object.getOwnPropertyNames(o) : [])
      if (name.startsWith(prefix) && /^[\p{ID_Start}$_][\p{ID_Continue}$]*$/u.test(name)) names.add(name);
  return [...names].sort().join("\n");
}))js";

bool IsNamePart(char c) {
  return isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsName(std::string_view name) {
  return !name.empty() && isdigit(static_cast<unsigned char>(name[0])) == 0;
}

}  // namespace

std::string CalledFunction(std::string_view line) {
  while (line.ends_with(' ')) line.remove_suffix(1);
  if (!line.ends_with('(') && !line.ends_with(',')) return "";
  size_t closed = 0;
  size_t open = line.size();
  while (open > 0 && (line[open - 1] != '(' || closed > 0)) {
    if (line[open - 1] == ')') ++closed;
    if (line[open - 1] == '(') --closed;
    --open;
  }
  if (open == 0) return "";
  return FindUnfinished(line.substr(0, open - 1)).prefix;
}

std::vector<std::string> DeclaredNames(std::string_view script) {
  std::vector<std::string> names;
  bool declares = false;
  for (size_t from = 0; from < script.size();) {
    size_t end = from;
    while (end < script.size() && IsNamePart(script[end])) ++end;
    const std::string_view word = script.substr(from, end - from);
    if (declares && IsName(word)) names.emplace_back(word);
    if (!word.empty() || isspace(static_cast<unsigned char>(script[from])) == 0)
      declares = word == "const" || word == "let" || word == "class";
    from = std::max(end, from + 1);
  }
  return names;
}

Unfinished FindUnfinished(std::string_view line) {
  size_t begin = line.size();
  while (begin > 0 && (IsNamePart(line[begin - 1]) || line[begin - 1] == '.')) --begin;
  const std::string_view path = line.substr(begin);
  const size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return {"", std::string(path)};
  const std::string_view object = path.substr(0, dot);
  // Each name between dots; what else stands there, "f().x" or "1.x", is not looked into.
  for (size_t from = 0; from <= object.size();) {
    const size_t end = std::min(object.find('.', from), object.size());
    if (!IsName(object.substr(from, end - from))) return {"undefined", ""};
    from = end + 1;
  }
  return {std::string(object), std::string(path.substr(dot + 1))};
}

std::vector<std::string> PropertyNames(JSContextRef context, const Unfinished& unfinished) {
  const ScriptTurn turn;
  JSValueRef thrown = nullptr;
  const std::string object = unfinished.object.empty() ? "globalThis" : unfinished.object;
  JSValueRef arguments[] = {Evaluate(context, {object, ""}, &thrown),
                            MakeJsValue(context, unfinished.prefix)};
  JSValueRef function = thrown == nullptr ? Evaluate(context, {kNamesOf, ""}, &thrown) : nullptr;
  if (function == nullptr) return {};
  JSValueRef joined = JSObjectCallAsFunction(context, JSValueToObject(context, function, nullptr), nullptr, 2,
                                             arguments, &thrown);
  std::string text;
  if (joined == nullptr || !ToUtf8(context, joined, &text)) return {};
  std::vector<std::string> names;
  std::istringstream lines(text);
  for (std::string name; std::getline(lines, name);) names.push_back(name);
  return names;
}

bool Exists(JSContextRef context, const std::string& name) {
  JSValueRef thrown = nullptr;
  return Evaluate(context, {name, ""}, &thrown) != nullptr;
}

}  // namespace sorel
