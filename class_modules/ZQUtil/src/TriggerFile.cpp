#include "TriggerFile.h"

#include <cstdio>

#include "ZQUtilTrace.h"

bool CreateTriggerFile(const char* path) {
  std::FILE* const file = std::fopen(path, "we");
  if (file == nullptr) return false;
  ZQUTIL_TRACE("ZQUtil created %s\n", path);
  std::fputc('1', file);
  std::fclose(file);
  return true;
}

void RaiseTrigger(const char* path) {
  ZQUTIL_TRACE("ZQUtil creating %s\n", path);
  CreateTriggerFile(path);
  ZQUTIL_TRACE("ZQUtil done %s\n", path);
}
