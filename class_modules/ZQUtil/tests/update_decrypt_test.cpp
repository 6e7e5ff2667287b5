// Encrypted packages, as the common tool makes them with the module's key.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "module_fixture.h"
#include "run_program.h"
#include "update_key_text.h"

namespace {

class UpdateDecryptTest : public ModuleTest {
 protected:
  UpdateDecryptTest() {
    New();
    Settle();
    ForgetTraces();
  }
  ~UpdateDecryptTest() override {
    for (const char* file : {"/tmp/plain", "/tmp/cipher", "/tmp/out"}) unlink(file);
  }

  static std::string Encrypt(const std::string& plain, const std::string& key = HexText(kUpdateKey)) {
    WriteFile("/tmp/plain", plain);
    const ProgramResult result = RunProgram(OpenSslWords("-e", "/tmp/plain", "/tmp/cipher", key));
    EXPECT_EQ(result.status, 0) << result.errors;
    return ReadFile("/tmp/cipher");
  }
  static std::string Decrypt(const std::string& cipher) {
    WriteFile("/tmp/cipher", cipher);
    const int in = open("/tmp/cipher", O_RDONLY | O_CLOEXEC);
    const int out = open("/tmp/out", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    ZQUtil::update_decrypt(in, out);
    EXPECT_EQ(close(in), 0) << "left open";
    EXPECT_EQ(close(out), 0) << "left open";
    return ReadFile("/tmp/out");
  }
  static std::string Bytes(size_t count) {
    std::string bytes;
    for (size_t i = 0; i < count; ++i) bytes += static_cast<char>(i * 31 % 251);
    return bytes;
  }
  static std::string Traced(int olen, const char* end, const char* loop = "Normal Loop Break\n") {
    return std::string("In update_decrypt\n") + loop + "Calling Final Decrypt olen=" + std::to_string(olen) +
           ", buff size=1056\n" + end;
  }
};

TEST_F(UpdateDecryptTest, GivesBackPackagesOfAllSizes) {
  for (const size_t size : {0, 1, 5, 7, 8, 9, 1015, 1016, 1023, 1024, 1025, 2000, 2047, 2048, 100000}) {
    EXPECT_EQ(Decrypt(Encrypt(Bytes(size))), Bytes(size)) << size;
  }
}

TEST_F(UpdateDecryptTest, TracesTheWayThroughAPackage) {
  Decrypt(Encrypt(Bytes(2000)));
  EXPECT_EQ(Traces(), Traced(984, "Cleaning Up\n"));
  ForgetTraces();
  Decrypt(Encrypt(Bytes(5)));
  EXPECT_EQ(Traces(), Traced(0, "Cleaning Up\n")) << "the only block waits for the end";
}

TEST_F(UpdateDecryptTest, ATruncatedPackageLeavesWhatThereWasAndSaysSo) {
  const std::string cipher = Encrypt(Bytes(2000));
  const std::string out = Decrypt(cipher.substr(0, 1500));
  EXPECT_EQ(out, Bytes(2000).substr(0, out.size()));
  EXPECT_EQ(out.size(), 1496U) << "whole blocks but for the last, which is not one";
  EXPECT_EQ(Traces(), Traced(480, "error in decrypt final\n"));
}

TEST_F(UpdateDecryptTest, APackageCutBetweenBlocksLacksItsEnd) {
  const std::string out = Decrypt(Encrypt(Bytes(2000)).substr(0, 1504));
  EXPECT_EQ(out, Bytes(2000).substr(0, 1496));
  EXPECT_EQ(Traces(), Traced(480, "error in decrypt final\n"));
}

TEST_F(UpdateDecryptTest, AnEmptyPackageIsAnError) {
  EXPECT_EQ(Decrypt(""), "");
  EXPECT_EQ(Traces(), Traced(0, "error in decrypt final\n"));
}

TEST_F(UpdateDecryptTest, AnotherKeysPackageIsNotThePackage) {
  const std::string out = Decrypt(Encrypt(Bytes(2000), "00112233445566778899aabbccddeeff"));
  EXPECT_NE(out, Bytes(2000));
  EXPECT_NE(Traces().find("error in decrypt final\n"), std::string::npos);
}

TEST_F(UpdateDecryptTest, AReadErrorEndsTheLoop) {
  const int folder = open("/tmp", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ZQUtil::update_decrypt(folder, -1);
  close(folder);
  EXPECT_EQ(Traces(), Traced(0, "error in decrypt final\n", "read error\n"));
}

TEST_F(UpdateDecryptTest, AWriteErrorIsTracedAndTheLoopGoesOn) {
  Encrypt(Bytes(2001));
  const int in = open("/tmp/cipher", O_RDONLY | O_CLOEXEC);
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_NE(full, -1);
  ZQUtil::update_decrypt(in, full);
  close(in);
  close(full);
  EXPECT_EQ(Traces(),
            "In update_decrypt\nwrite error\nwrite error\nNormal Loop Break\n"
            "Calling Final Decrypt olen=984, buff size=1056\nwrite error\nCleaning Up\n");
}

TEST_F(UpdateDecryptTest, AnOpenSslWithoutBlowfishIsNamed) {
  const std::string cipher = Encrypt(Bytes(10));
  setenv("OPENSSL_MODULES", "/nowhere", 1);
  const std::string out = Decrypt(cipher);
  unsetenv("OPENSSL_MODULES");
  EXPECT_EQ(out, "");
  EXPECT_EQ(Traces(),
            "In update_decrypt\n"
            "ZQUtil cannot decrypt: no Blowfish in this OpenSSL, whose legacy provider it needs\n");
}

}  // namespace
