#include "UpdateDecrypt.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "DownloadDetails.h"
#include "InstallRule.h"
#include "UpdateCipher.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"

namespace {

// What is decrypted at a time, and room for that and one block more.
constexpr int kPieceBytes = 1024;
constexpr int kDecryptedBytes = 1056;

// A file piece by piece, read in larger ones: half of the system calls are saved.
class PieceReader {
 public:
  explicit PieceReader(int file) : file_(file) {}

  // The next piece; what read() returns for its size.
  ssize_t Next(const unsigned char** piece) {
    if (next_ == end_) {
      const ssize_t count = read(file_, buffer_.get(), kBufferBytes);
      if (count <= 0) return count;
      next_ = buffer_.get();
      end_ = next_ + count;
    }
    const ssize_t count = std::min<ssize_t>(kPieceBytes, end_ - next_);
    *piece = next_;
    next_ += count;
    return count;
  }

 private:
  static constexpr size_t kBufferBytes = size_t{64} * kPieceBytes;

  const int file_;
  const std::unique_ptr<unsigned char[]> buffer_ = std::make_unique<unsigned char[]>(kBufferBytes);
  const unsigned char* next_ = nullptr;
  const unsigned char* end_ = nullptr;
};

void Write(int out, const unsigned char* bytes, int length) {
  while (length > 0) {
    const ssize_t written = write(out, bytes, static_cast<size_t>(length));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      ZQUTIL_TRACE("write error");
      return;
    }
    bytes += written;
    length -= static_cast<int>(written);
  }
}

// The package's bytes stay as they came.
void Reopen(DownloadDetails& details) {
  details.stream = std::fopen(details.fileName, "abe");
}

void DecryptInto(DownloadDetails& details, int in, int out, const std::string& outName) {
  ZQUTIL_TRACE("Both files open %d %d\n", in, out);
  ZQUtil::update_decrypt(in, out);
  ZQUTIL_TRACE("Decrypt Complete\n");
  fsync(out);
  close(out);
  close(in);
  ZQUTIL_TRACE("Deleting file %s\n", details.fileName);
  unlink(details.fileName);
  sync();
  std::snprintf(details.fileName, sizeof details.fileName, "%s", outName.c_str());
  Reopen(details);
}

}  // namespace

void ZQUtil::update_decrypt(int in, int out) {
  ZQUTIL_TRACE("In update_decrypt\n");
  UpdateCipher cipher;
  if (!cipher.Begin()) {
    ZQUTIL_TRACE("ZQUtil cannot decrypt: no Blowfish in this OpenSSL, whose legacy provider it needs\n");
    return;
  }
  unsigned char decrypted[kDecryptedBytes];
  int length = 0;
  const char* reason = nullptr;
  PieceReader reader(in);
  for (;;) {
    const unsigned char* piece = nullptr;
    const ssize_t count = reader.Next(&piece);
    if (count <= 0) {
      reason = count == 0 ? "Normal Loop Break\n" : "read error\n";
      break;
    }
    std::memset(decrypted, 0, sizeof decrypted);
    if (!cipher.Update(decrypted, &length, piece, static_cast<int>(count))) {
      ZQUTIL_TRACE("error in decrypt update\n");
      return;
    }
    Write(out, decrypted, length);
  }
  ZQUTIL_TRACE("%s", reason);
  ZQUTIL_TRACE("Calling Final Decrypt olen=%d, buff size=%d\n", length, kDecryptedBytes);
  std::memset(decrypted, 0, sizeof decrypted);
  if (cipher.Final(decrypted, &length)) {
    Write(out, decrypted, length);
    ZQUTIL_TRACE("Cleaning Up\n");
  } else {
    ZQUTIL_TRACE("error in decrypt final\n");
  }
}

void DecryptPackage(DownloadDetails& details) {
  std::fclose(details.stream);
  details.stream = nullptr;
  const std::string outName = DecryptedPath(details.fileName);
  ZQUTIL_TRACE("Decrypting %s to %s\n", details.fileName, outName.c_str());
  const int in = open(details.fileName, O_RDONLY | O_CLOEXEC);
  int out = -1;
  if (in == -1) {
    ZQUTIL_TRACE("Could not open input file %s\n", details.fileName);
    Reopen(details);
  } else {
    unlink(outName.c_str());
    out = open(outName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0700);
    if (out == -1) {
      close(in);
      ZQUTIL_TRACE("Could not open output file %s\n", outName.c_str());
      Reopen(details);
    } else {
      DecryptInto(details, in, out, outName);
    }
  }
  std::fprintf(stderr, "Handles (2) %d (%s)  %d (%s)\n", in, details.fileName, out, outName.c_str());
}
