// An INI file as a whole: read, and replaced in turn with other writers.
#ifndef ZQ_INI_FILE_H
#define ZQ_INI_FILE_H

#include <functional>
#include <optional>
#include <string>

#include "ini_document.h"

// The path of an INI file (zq_ini.h).
std::string IniFilePath(const std::string& file);

// What the file holds, nothing when it does not exist. None, and the reason traced, when it cannot be read,
// is no plain file, or is longer than 64 MiB.
std::optional<std::string> ReadIniFile(const std::string& path);

// Changes the file in turn with the other writers of its folder. False, and the reason traced, when the file
// is not as `change` left the document; it is then as it was. A link stays one: the file it names is written.
bool ChangeIniFile(const std::string& path, const std::function<IniChange(IniDocument&)>& change,
                   bool durable);

#endif
