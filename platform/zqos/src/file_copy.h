// Copies of files that come to be whole or not at all.
#ifndef ZQOS_FILE_COPY_H
#define ZQOS_FILE_COPY_H

#include <string>

// See zq_CopyFile. False with errno; may throw std::bad_alloc.
bool CopyFileWhole(const std::string& source, const std::string& target, bool overwrite);

#endif
