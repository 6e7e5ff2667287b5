// Which names a search for "FOLDER/PATTERN" finds.
#ifndef ZQOS_FILE_PATTERN_H
#define ZQOS_FILE_PATTERN_H

#include <string>

struct FilePattern {
  std::string folder;  // "." without a "/", "/" for what lies in the root
  std::string names;   // shell wildcards
};

FilePattern SplitPattern(const std::string& pattern);
// Whether the wildcards match, also a name whose bytes are no text in the process's locale. "*" matches every
// name.
bool NameMatches(const std::string& names, const char* name);

#endif
