#include "UpdateDecrypt.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
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

// A file piece by piece, read in larger ones: the system calls of a small piece cost a tenth of its decryption.
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

// The same for what is written. A piece that cannot be written is traced, and the next ones are tried all the same.
class PieceWriter {
 public:
  explicit PieceWriter(int file) : file_(file) {}
  PieceWriter(const PieceWriter&) = delete;
  PieceWriter& operator=(const PieceWriter&) = delete;
  ~PieceWriter() { Flush(); }

  // Room for the next piece, kDecryptedBytes of zeros.
  unsigned char* Room() {
    if (count_ == kPieces) Flush();
    unsigned char* const room = buffer_.get() + End();
    std::memset(room, 0, kDecryptedBytes);
    return room;
  }
  // So much of the room is the piece.
  void Add(int length) {
    ends_[count_] = End() + static_cast<size_t>(length);
    ++count_;
  }
  void Flush() {
    const size_t written = WriteSome(buffer_.get(), End());
    for (size_t piece = 0; piece < count_; ++piece) {
      if (ends_[piece] > written) ZQUTIL_TRACE("write error");
    }
    count_ = 0;
  }

 private:
  static constexpr size_t kPieces = 64;

  size_t End() const { return count_ == 0 ? 0 : ends_[count_ - 1]; }

  // How many bytes the disk took.
  size_t WriteSome(const unsigned char* bytes, size_t size) const {
    size_t done = 0;
    while (done < size) {
      const ssize_t count = write(file_, bytes + done, size - done);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      done += static_cast<size_t>(count);
    }
    return done;
  }

  const int file_;
  const std::unique_ptr<unsigned char[]> buffer_ =
      std::make_unique<unsigned char[]>(kPieces * kDecryptedBytes);
  std::array<size_t, kPieces> ends_{};  // of each piece, in the buffer
  size_t count_ = 0;
};

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
  int length = 0;
  const char* reason = nullptr;
  PieceReader reader(in);
  PieceWriter writer(out);
  for (;;) {
    const unsigned char* piece = nullptr;
    const ssize_t count = reader.Next(&piece);
    if (count <= 0) {
      reason = count == 0 ? "Normal Loop Break\n" : "read error\n";
      break;
    }
    if (!cipher.Update(writer.Room(), &length, piece, static_cast<int>(count))) {
      ZQUTIL_TRACE("error in decrypt update\n");
      return;
    }
    writer.Add(length);
  }
  writer.Flush();
  ZQUTIL_TRACE("%s", reason);
  ZQUTIL_TRACE("Calling Final Decrypt olen=%d, buff size=%d\n", length, kDecryptedBytes);
  if (!cipher.Final(writer.Room(), &length)) {
    ZQUTIL_TRACE("error in decrypt final\n");
    return;
  }
  writer.Add(length);
  writer.Flush();
  ZQUTIL_TRACE("Cleaning Up\n");
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
