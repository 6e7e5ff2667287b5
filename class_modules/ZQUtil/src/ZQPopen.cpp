#include "ZQPopen.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "ZQFileUtilities.h"
#include "ZQUtilTrace.h"

namespace {

constexpr char kEndOfFile = '\xFF';

// A new empty file that is removed again.
class TemporaryFile {
 public:
  TemporaryFile() : fd_(mkostemp(path_, O_CLOEXEC)) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!Made()) return;
    close(fd_);
    unlink(path_);
  }

  bool Made() const { return fd_ >= 0; }
  const char* Path() const { return path_; }

 private:
  char path_[sizeof "/tmp/.popen-XXXXXX"] = "/tmp/.popen-XXXXXX";
  const int fd_;
};

bool Run(const char* command, const TemporaryFile& out, const TemporaryFile& err) try {
  // Without both files there is no command line to build.
  if (command == nullptr || !out.Made() || !err.Made()) return false;
  const std::string line = std::string("sh -c \"(") + command + ")\" 1>" + out.Path() + " 2>" + err.Path();
  if (std::system(line.c_str()) >= 0) return true;
  ZQUTIL_TRACE("files or processes could not be created (%s)\n", line.c_str());
  return false;
} catch (const std::bad_alloc&) {
  return false;
}

// Appends what is left of the file and the byte that marks its end.
void Capture(std::FILE* file, _ZqString* capture, char newlineReplacement) {
  for (int byte = getc(file); byte != EOF; byte = getc(file)) {
    ZQString_appendCharacter(capture, byte == '\n' ? newlineReplacement : static_cast<char>(byte));
  }
  ZQString_appendCharacter(capture, kEndOfFile);
}

}  // namespace

bool ZQPopen(const char* command, _ZqString* out, _ZqString* err, char newlineReplacement) {
  const TemporaryFile outFile;
  const TemporaryFile errFile;
  bool succeeded = Run(command, outFile, errFile);

  std::FILE* const output = outFile.Made() ? std::fopen(outFile.Path(), "re") : nullptr;
  zq_StringReset(out);
  if (output != nullptr && out != nullptr) Capture(output, out, newlineReplacement);
  // The failure is named after pclose, whose result for an opened file is fclose's.
  if (output == nullptr || std::fclose(output) != 0) {
    zq_Trace(ZQUtilTraceInstance, ZQ_TRACE_FAILURE, 1, true, "failed to execute pclose");
    succeeded = false;
  }

  if (err == nullptr) return succeeded;
  zq_StringReset(err);
  std::FILE* const errors = errFile.Made() ? std::fopen(errFile.Path(), "re") : nullptr;
  if (errors == nullptr) return succeeded;
  Capture(errors, err, newlineReplacement);
  std::fclose(errors);
  return succeeded && zq_StringLength(err) == 0;
}
