// Scripts' own settings and cache files, and text conversion.
#include <cstdio>
#include <cstring>
#include <memory>

#include "ConfigWriteRecord.h"
#include "ZQUtil.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "iso_8859_1.h"
#include "script_values.h"
#include "zq_file.h"
#include "zq_ini.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUtilSettings";
constexpr size_t kSettingLimit = 1024;

struct Freed {
  void operator()(void* block) const { zq__free(block, kSourceTag, __LINE__); }
};
using Text = std::unique_ptr<char, Freed>;

// `format` with the one name put in; null when memory is out.
Text NameIn(const char* format, const char* name) {
  const size_t size = std::strlen(format) + std::strlen(name) + 1;
  Text text(static_cast<char*>(zq__calloc(size, 1, kSourceTag, __LINE__)));
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  if (text != nullptr) std::snprintf(text.get(), size, format, name);
#pragma GCC diagnostic pop
  return text;
}

Text SettingsFileOf(const char* application) {
  return NameIn("%s.ini", application);
}

// The buffer is not given back: each call costs its path for the life of the process.
const char* CachePathOf(const char* name) {
  return NameIn("./cache/%s", name).release();
}

}  // namespace

int32_t ZQUtil::GetIniSetting(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil Get Ini Setting\n");
  const ScriptArguments arguments(argc, argv);
  if (!arguments.AllPresent(2)) return 0;
  const char* const application = arguments.Text(0);
  const char* const key = arguments.Text(1);
  const char* const fallback = arguments.Text(2);
  if (application == nullptr || key == nullptr) return 1;
  const Text file = SettingsFileOf(application);
  if (file == nullptr) return 1;
  char value[kSettingLimit + 1] = {};
  zq_GetINIFileString(kConfigSection, key, fallback != nullptr ? fallback : "", value, kSettingLimit,
                      file.get());
  ReturnString(value, rval);
  return 1;
}

int32_t ZQUtil::SetIniSetting(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil SetIniSetting\n");
  const ScriptArguments arguments(argc, argv);
  if (arguments.Count() != 3 || !arguments.AllPresent(2)) return 0;
  const char* const application = arguments.Text(0);
  const char* const key = arguments.Text(1);
  // The value is written as the engine spells it, void and null too.
  const char* const value = arguments.Text(2);
  if (application == nullptr || key == nullptr || value == nullptr) return 1;
  ZQUTIL_TRACE("ZQUtil SetIniSetting app=%s, name=%s, val=%s\n", application, key, value);
  const Text file = SettingsFileOf(application);
  my_WriteINIFileString(kConfigSection, key, value, file.get());
  return 1;
}

int32_t ZQUtil::DeleteIniFile(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  // The setter's text: both change an application's settings.
  ZQUTIL_TRACE("ZQUtil SetIniSetting\n");
  const ScriptArguments arguments(argc, argv);
  // The second argument is required and not used.
  if (arguments.Count() != 2 || !arguments.AllPresent(2)) return 0;
  const char* const application = arguments.Text(0);
  if (application == nullptr) return 1;
  const Text file = SettingsFileOf(application);
  char path[4096];
  if (file == nullptr || !zq_INIFilePath(file.get(), path, sizeof path)) return 1;
  DropConfigWrites(file.get());
  zq_RemoveFile(path, true);
  return 1;
}

int32_t ZQUtil::WriteFile(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil WriteFile\n");
  const ScriptArguments arguments(argc, argv);
  if (arguments.Count() != 2 || !arguments.AllPresent(2)) return 0;
  const char* const name = arguments.Text(0);
  const char* const content = arguments.Text(1);
  if (name == nullptr || content == nullptr) return 1;
  const char* const path = CachePathOf(name);
  if (path == nullptr) return 1;
  std::FILE* const file = std::fopen(path, "we");
  if (file == nullptr) return 1;
  std::fputs(content, file);
  std::fclose(file);
  return 1;
}

int32_t ZQUtil::DeleteFile(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil DeleteFile\n");
  const ScriptArguments arguments(argc, argv);
  if (arguments.Count() != 1 || !arguments.AllPresent(1)) return 0;
  const char* const name = arguments.Text(0);
  if (name == nullptr) return 1;
  const char* const path = CachePathOf(name);
  if (path != nullptr) zq_RemoveFile(path, true);
  return 1;
}

int32_t ZQUtil::UTF8Encode(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  const ScriptArguments arguments(argc, argv);
  if (arguments.Count() != 1 || !arguments.AllPresent(1)) return 0;
  const char* const text = arguments.Text(0);
  if (text == nullptr) return 1;
  // The engine may use its string's memory again when it makes the result.
  const Text copy(zq__newString(text, kSourceTag, __LINE__));
  if (copy == nullptr) return 1;
  const auto room = static_cast<uint32_t>(2 * std::strlen(copy.get()));
  const Text output(static_cast<char*>(zq__calloc(size_t{room} + 1, 1, kSourceTag, __LINE__)));
  if (output == nullptr) return 1;
  iso_8859_1s_to_utf8s(reinterpret_cast<unsigned char*>(output.get()),
                       reinterpret_cast<const unsigned char*>(copy.get()), room, false);
  ReturnString(output.get(), rval);
  return 1;
}
