#include "script.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "js_text.h"
#include "script_turn.h"

namespace sorel {
namespace {

bool ReadAll(FILE* file, std::string* bytes) {
  char block[16384];
  for (size_t count = 0; (count = fread(block, 1, sizeof block, file)) > 0;) bytes->append(block, count);
  return ferror(file) == 0;
}

}  // namespace

bool ReadScript(const std::string& path, ScriptText* script, std::string* error) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "re"), fclose);
  script->name = path;
  if (file != nullptr && ReadAll(file.get(), &script->source)) return true;
  *error = path + ": " + strerror(errno);
  return false;
}

bool ReadScriptFromStdin(ScriptText* script, std::string* error) {
  script->name = "<stdin>";
  if (ReadAll(stdin, &script->source)) return true;
  *error = std::string("standard input: ") + strerror(errno);
  return false;
}

JSValueRef Evaluate(JSContextRef context, const ScriptText& script, JSValueRef* thrown) {
  const JsText source = JsText::Of(script.source);
  const JsText name = JsText::Of(script.name);
  *thrown = nullptr;
  const ScriptTurn turn;
  if (!turn) return nullptr;
  JSValueRef value = JSEvaluateScript(context, source.Get(), nullptr, name.Get(), 1, thrown);
  return *thrown == nullptr ? value : nullptr;
}

std::string ResolveScript(const std::string& path, const std::string& caller) {
  const std::filesystem::path folder = std::filesystem::path(caller).parent_path();
  return (folder / path).lexically_normal().string();
}

}  // namespace sorel
