// From a package's URL to the reboot: the download, the installation, the acknowledgement, and everything that goes
// wrong on the way.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "SoftwareUpdateList.h"
#include "UpdateAcknowledgement.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUpdateDownload.h"
#include "ZQUpdateInstall.h"
#include "fault.h"
#include "run_program.h"
#include "update_fixture.h"
#include "update_key_text.h"
#include "zq_memory.h"
#include "zq_socket.h"
#include "zqwww.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;

constexpr char kDisconnected[] =
    "ZQUtil Received a disconnect notification from zqwww on downloading an update\n";
constexpr char kDestroyed[] = "ZQUtil Done destroying http object";

class UpdateDownloadTest : public UpdateTest {
 protected:
  UpdateDownloadTest() { fs::create_directories("/tmp/packed"); }
  ~UpdateDownloadTest() override {
    for (const char* rest : {"/tmp/packed", "/tmp/run", "/tmp/ran", "/tmp/app-1.tgz", "/tmp/capp-1.tgz"}) {
      fs::remove_all(rest);
    }
  }

  // A package whose run script is this text.
  static std::string Package(const std::string& script) {
    WriteFile("/tmp/packed/run", script);
    const ProgramResult result =
        RunProgram({"tar", "-czf", "/tmp/packed/package", "-C", "/tmp/packed", "run"});
    EXPECT_EQ(result.status, 0) << result.errors;
    return ReadFile("/tmp/packed/package");
  }
  // One that says that all went well, and which argument it got.
  static std::string GoodPackage() {
    return Package("echo $1 > /tmp/ran\nfw_setenv -c /etc/fw_env.config update.done 1\n");
  }

  void Download(const std::string& url) { DownloadUpdate(url.c_str()); }
  // The download that began is over and its object gone.
  void AwaitEnd() {
    AwaitTrace(kDestroyed);
    Settle();
  }
  // The next round of a test, with the traces of this one out of the way. No thread of it sleeps beside the next one's.
  void Again() {
    Drop(*util);
    EndLightSensor();
    for (const char* trigger : {"/tmp/reboot", "/tmp/do_update"}) unlink(trigger);
    ForgetAwaited();
  }
  std::string HostText() const { return "127.0.0.1:" + std::to_string(packages.Port()); }

  static bool Exists(const char* path) { return fs::exists(path); }
};

TEST(GetFilenameFromURL, IsWhatFollowsTheLastSlash) {
  EXPECT_STREQ(GetFilenameFromURL("http://h/a/app-1.tgz"), "app-1.tgz");
  EXPECT_STREQ(GetFilenameFromURL("http://h/a/"), "");
  EXPECT_STREQ(GetFilenameFromURL("/x/y"), "y");
  EXPECT_EQ(GetFilenameFromURL(""), nullptr);
  EXPECT_EQ(GetFilenameFromURL("/x"), nullptr);
  EXPECT_EQ(GetFilenameFromURL("/"), nullptr);
  EXPECT_EQ(GetFilenameFromURL("app-1.tgz"), nullptr);
}

TEST(Acknowledgement, IsTheServersForm) {
  const std::string body = AcknowledgementBody(12, 34);
  EXPECT_EQ(body, "<xml version=\"1.0\">\n<updateDone deviceId=\"34\" updateId=\"12\"/></xml>\n");
  EXPECT_EQ(AcknowledgementRequest("host.example", 443, body),
            "POST /zqapplog HTTP/1.1\r\nContent-Type:application/x-www-form-urlencoded\r\n"
            "Host: host.example:443\r\nContent-Length: 68\r\n\r\n" +
                body);
}

TEST_F(UpdateDownloadTest, AppliesAPackageAcknowledgesItAndReboots) {
  Start();
  Listen();
  Device("1", "4");
  currentUpdateId = 12;
  assignedDeviceId = 34;
  updateAvailable = true;
  packages.AnswerBody(GoodPackage());
  server.AnswerBody("thank you");
  TakeTraces();
  Download(Url("app-1.tgz"));
  EXPECT_EQ(packages.NextRequest(),
            "GET /packages/app-1.tgz HTTP/1.1\r\nHost: " + HostText() +
                "\r\n"
                "Accept: text/xml, application/xml, application/xhtml+xml, text/html; q=0.9, "
                "text/plain; q=0.8\r\n"
                "User-Agent: Brimvale RSS transport layer\r\n\r\n");
  char mac[ZQ_MAC_TEXT];
  zq_GetMACAddress(mac);
  EXPECT_EQ(
      server.NextRequest(),
      "POST /zqapplog HTTP/1.1\r\n"
      "Content-Type:application/x-www-form-urlencoded\r\n"
      "Host: localhost:" +
          std::to_string(server.Port()) +
          "\r\n"
          "Content-Length: 68\r\n"
          "User-Agent: Brimvale RSS transport layer\r\n"
          "Accept: text/xml, application/xml, application/xhtml+xml, text/html; q=0.9, text/plain; q=0.8\r\n"
          "Proxy-Connection: Keep-Alive\r\n"
          "MAC-Addr: " +
          mac +
          "\r\n\r\n"
          "<xml version=\"1.0\">\n<updateDone deviceId=\"34\" updateId=\"12\"/></xml>\n");
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(ReadFile("/tmp/ran"), "mode=1\n");
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
  EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
  EXPECT_FALSE(Exists("/tmp/do_update"));
  EXPECT_FALSE(updateAvailable);
  EXPECT_EQ(StoredKey("update.done"), "<none>");
  EXPECT_EQ(engine.TakeCalls(),
            "<begin>,onDownloading(<int 100>)<end><begin>,onInstalling()<end><begin>,onInstalling()<end>");
}

TEST_F(UpdateDownloadTest, IsTracedStepByStep) {
  Start();
  Listen();
  Device("1", "4");
  const std::string package = GoodPackage();
  packages.AnswerBody(package);
  server.AnswerBody("");
  TakeTraces();
  Download(Url("app-1.tgz"));
  PassReboot();
  AwaitEnd();
  const std::string traces = TakeTraces();
  EXPECT_EQ(traces.substr(0, traces.find("Failed to find")),
            "ZQUtil GetFilenameFromURL " + Url("app-1.tgz") +
                " returned app-1.tgz\n"
                "app-1.tgz is not an encrypted file\n"
                "ZQUtil Downloading Update\n"
                "ZQUtil Received a connection from zqwww on download\n"
                "ZQUtil Received data from zqwww on download\n"
                "Received Full File " +
                std::to_string(package.size()) +
                "\n"
                "Checking if Encrypted File\n"
                "ZQUtil Update Done Message\n"
                "ZQUtil sending onInstalling\n"
                "ZQUtil SendUpdateDownloadedSuccess\n"
                "Application Logging sending Request\n"
                "Rebooting Device from SendUpdateDownloadSuccess\n"
                "Reboot Device Called\n"
                "Call to rebootRequired 1\n"
                "Returning 1\n" +
                (traces.find("Failed to find") == std::string::npos
                     ? traces.substr(traces.find("ZQUtil done updating database"))
                     : ""));
  EXPECT_EQ(traces.substr(traces.find("ZQUtil done updating database")),
            std::string("ZQUtil done updating database.  Sorel is outta here.\n"
                        "ZQUtil Update Done Message\n"
                        "ZQUtil sending onInstalling\n"
                        "ZQUtil issuing a reboot\n"
                        "ZQUtil created /tmp/reboot\n"
                        "ZQUtil done /tmp/reboot\n"
                        "Calling Cleanup\n") +
                kDisconnected +
                "ZQUtil Destroying an http object\n"
                "ZQUtil Done destroying http object\n");
}

TEST_F(UpdateDownloadTest, APackageWhoseScriptFailsIsNotAcknowledgedButTheDeviceReboots) {
  Start();
  Device("1", "4");
  currentUpdateId = 12;
  packages.AnswerBody(Package("exit 1\n"));
  Download(Url("app-1.tgz"));
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(server.Waiting(), 0U);
  EXPECT_EQ(StoredKey("update.done"), "<none>");
  EXPECT_EQ(StoredKey("upack.key"), "<none>");
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
}

TEST_F(UpdateDownloadTest, OnlyExactlyOneIsSuccess) {
  for (const char* answer : {"10", "yes", "'1 '"}) {
    Start();
    Device("1", "4");
    packages.AnswerBody(Package("fw_setenv -c /etc/fw_env.config update.done " + std::string(answer) + "\n"));
    Download(Url("app-1.tgz"));
    PassReboot();
    AwaitTrace("Calling Cleanup");
    EXPECT_EQ(server.Waiting(), 0U) << answer;
    AwaitEnd();
    Again();
  }
}

TEST_F(UpdateDownloadTest, WithoutTheKeyStoreAPackageRunsButCountsForNothing) {
  Start();
  // By its name it is applied on every device, also on one that cannot say what it is.
  packages.AnswerBody(Package("echo $1 > /tmp/ran\n"));
  {
    const ClosedKeyStore closed;
    Download(Url("app-lg__media.tgz"));
    PassReboot();
    AwaitEnd();
  }
  EXPECT_EQ(ReadFile("/tmp/ran"), "mode=1\n");
  EXPECT_EQ(server.Waiting(), 0U);
}

TEST_F(UpdateDownloadTest, ACopiedPackageWaitsForTheSystemsUpdater) {
  for (const char* partitions : {"2", "4"}) {
    Start();
    Device("0", partitions);
    currentUpdateId = 1;
    packages.AnswerBody("the package");
    server.AnswerBody("");
    TakeTraces();
    Download(Url("app-1.tgz"));
    AwaitTrace("ZQUtil created /tmp/do_update");
    AwaitModuleSleeper();
    EXPECT_EQ(ReadFile("/tmp/do_update"), "1");
    EXPECT_EQ(ReadFile("/updates/app-1.tgz"), "the package");
    EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
    for (int second = 0; second < 3; ++second) {
      clock.Advance(seconds(1));
      AwaitModuleSleeper();
    }
    EXPECT_EQ(server.Waiting(), 0U) << "the updater is still at work";
    unlink("/tmp/do_update");
    clock.Advance(seconds(1));
    EXPECT_EQ(server.NextRequest().substr(0, 5), "POST ");
    PassReboot();
    AwaitEnd();
    const std::string traces = TakeTraces();
    EXPECT_NE(traces.find("ZQUtil SendUpdateDownloadedSuccess\n"
                          "Calling update script\n"
                          "ZQUtil creating /tmp/do_update\n"
                          "ZQUtil created /tmp/do_update\n"
                          "ZQUtil done /tmp/do_update\n"
                          "Application Logging sending Request\n"),
              std::string::npos)
        << traces;
    Again();
  }
}

TEST_F(UpdateDownloadTest, APackageThatCannotBeCopiedIsNotAcknowledged) {
  Start();
  Device("0", "2");
  fs::create_directories("/updates/app-1.tgz");  // no file takes its place
  packages.AnswerBody("the package");
  TakeTraces();
  Download(Url("app-1.tgz"));
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  PassReboot();
  AwaitEnd();
  EXPECT_NE(TakeTraces().find("ZQUtil could not copy /tmp/app-1.tgz to /updates\n"), std::string::npos);
  EXPECT_EQ(server.Waiting(), 0U);
  EXPECT_EQ(StoredKey("upack.key"), "<none>");
}

TEST_F(UpdateDownloadTest, DevicesThatCannotInstallDoNotDownload) {
  Start();
  const std::pair<const char*, const char*> devices[] = {{"1", "2"}, {"1", "5"}, {"-1", "4"}, {"-1", "2"},
                                                         {"0", "3"}, {"0", "0"}, {"", ""}};
  for (const auto& [bootloader, partitions] : devices) {
    Device(bootloader, partitions);
    updateAvailable = true;
    TakeTraces();
    Download(Url("app-1.tgz"));
    EXPECT_EQ(TakeTraces(), "ZQUtil GetFilenameFromURL " + Url("app-1.tgz") +
                                " returned app-1.tgz\napp-1.tgz is not an encrypted file\n"
                                "ZQUtil System Cannot Support Software Update\n")
        << bootloader << " " << partitions;
    EXPECT_EQ(trace.Lines().back().level, 50000);
    EXPECT_FALSE(updateAvailable);
    EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
  }
}

TEST_F(UpdateDownloadTest, AMediaPackageIsAppliedOnEveryDevice) {
  Start();
  Device("0", "3");
  packages.AnswerBody(GoodPackage());
  server.AnswerBody("");
  Download(Url("app-LG__Media-1.tgz"));
  EXPECT_EQ(server.NextRequest().substr(0, 5), "POST ");
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(ReadFile("/tmp/ran"), "mode=1\n");
}

TEST_F(UpdateDownloadTest, WithoutTheKeyStoreNoOtherPackageIsSupported) {
  Start();
  Device("1", "4");
  const ClosedKeyStore closed;
  TakeTraces();
  Download(Url("app-1.tgz"));
  EXPECT_NE(TakeTraces().find("ZQUtil System Cannot Support Software Update\n"), std::string::npos);
}

TEST_F(UpdateDownloadTest, AnEncryptedPackageIsDecryptedBeforeItIsInstalled) {
  Start();
  Device("0", "2");
  WriteFile("/tmp/packed/plain", std::string(5000, 'p'));
  const ProgramResult result = RunProgram(OpenSslWords("-e", "/tmp/packed/plain", "/tmp/packed/cipher"));
  ASSERT_EQ(result.status, 0) << result.errors;
  packages.AnswerBody(ReadFile("/tmp/packed/cipher"));
  WriteFile("/tmp/app-2.1.tgz", "an old one");
  TakeTraces();
  testing::internal::CaptureStderr();
  Download(Url("capp-2.1.tgz"));
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  EXPECT_EQ(ReadFile("/updates/app-2.1.tgz"), std::string(5000, 'p'));
  struct stat status = {};
  ASSERT_EQ(stat("/updates/app-2.1.tgz", &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700U);
  EXPECT_FALSE(Exists("/tmp/capp-2.1.tgz"));
  EXPECT_FALSE(Exists("/tmp/app-2.1.tgz"));
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  PassReboot();
  AwaitEnd();
  const std::string traces = TakeTraces();
  const size_t from = traces.find("File is Encrypted\n");
  const size_t opened = traces.find("Both files open ");
  const std::string handles = traces.substr(opened + 16, traces.find('\n', opened) - opened - 16);
  EXPECT_EQ(traces.substr(from, traces.find("ZQUtil Update Done Message\n") - from),
            "File is Encrypted\n"
            "Decrypting /tmp/capp-2.1.tgz to /tmp/app-2.1.tgz\n"
            "Both files open " +
                handles +
                "\n"
                "In update_decrypt\n"
                "Normal Loop Break\n"
                "Calling Final Decrypt olen=912, buff size=1056\n"
                "Cleaning Up\n"
                "Decrypt Complete\n"
                "Deleting file /tmp/capp-2.1.tgz\n");
  const std::string in = handles.substr(0, handles.find(' '));
  const std::string out = handles.substr(handles.find(' ') + 1);
  const std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_NE(errors.find("Handles (2) " + in + " (/tmp/app-2.1.tgz)  " + out + " (/tmp/app-2.1.tgz)\n"),
            std::string::npos)
      << errors;
}

TEST_F(UpdateDownloadTest, ADecryptionWithoutItsOutputFileKeepsThePackageAsItCame) {
  Start();
  Device("0", "2");
  packages.AnswerBody("not decrypted");
  fs::create_directories("/tmp/app-3.tgz");
  TakeTraces();
  testing::internal::CaptureStderr();
  Download(Url("capp-3.tgz"));
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  EXPECT_EQ(ReadFile("/updates/capp-3.tgz"), "not decrypted");
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  PassReboot();
  AwaitEnd();
  fs::remove("/tmp/app-3.tgz");
  EXPECT_NE(TakeTraces().find("Decrypting /tmp/capp-3.tgz to /tmp/app-3.tgz\n"
                              "Could not open output file /tmp/app-3.tgz\nZQUtil Update Done Message\n"),
            std::string::npos);
  EXPECT_NE(testing::internal::GetCapturedStderr().find(" (/tmp/capp-3.tgz)  -1 (/tmp/app-3.tgz)\n"),
            std::string::npos);
}

TEST_F(UpdateDownloadTest, AUrlWithoutAFileNameIsNothingToDownload) {
  Start();
  Device("1", "4");
  for (const char* url : {"", "/x", "app.tgz"}) {
    updateAvailable = true;
    TakeTraces();
    Download(url);
    EXPECT_EQ(TakeTraces(), "ZQUtil GetFilenameFromURL " + std::string(url) + " returned NULL\n");
    EXPECT_FALSE(updateAvailable);
  }
}

TEST_F(UpdateDownloadTest, AUrlThatEndsInASlashIsNoFile) {
  Start();
  Device("1", "4");
  updateAvailable = true;
  TakeTraces();
  Download("http://h/x/");
  EXPECT_EQ(TakeTraces(), "ZQUtil GetFilenameFromURL http://h/x/ returned \n is not an encrypted file\n");
  EXPECT_FALSE(updateAvailable);
  Download("http://h/x/");
  EXPECT_NE(TakeTraces(), "") << "no download is in progress";
}

TEST_F(UpdateDownloadTest, AUrlThatIsNoneIsCleanedUp) {
  Start();
  Device("1", "4");
  WriteFile("/tmp/app-old.tgz", "an old one");
  updateAvailable = true;
  TakeTraces();
  Download("gopher://h/app-1.tgz");
  const std::string traces = TakeTraces();
  EXPECT_NE(traces.find("ZQUtil Downloading Update\nZQUtil URL failed for 'gopher://h/app-1.tgz'\n"
                        "ZQUtil Socket Failed\n"),
            std::string::npos)
      << traces;
  EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
  EXPECT_FALSE(Exists("/tmp/app-old.tgz"));
  EXPECT_FALSE(updateAvailable);
}

TEST_F(UpdateDownloadTest, ARefusedConnectionIsAnErrorAndNoFailedDownload) {
  Start();
  Listen();
  Device("1", "4");
  updateAvailable = true;
  TakeTraces();
  Download("http://127.0.0.1:" + std::to_string(RefusingPort()) + "/app-1.tgz");
  AwaitEnd();
  const std::string traces = TakeTraces();
  EXPECT_EQ(traces.substr(traces.find("ZQUtil Downloading Update\n")),
            std::string("ZQUtil Downloading Update\n"
                        "ZQUtil Received an error from zqwww on Download\n") +
                kDisconnected + "ZQUtil Destroying an http object\nZQUtil Done destroying http object\n");
  EXPECT_EQ(engine.TakeCalls(), "");
  EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
  EXPECT_FALSE(updateAvailable);
}

class FailedDownloadTest : public UpdateDownloadTest, public testing::WithParamInterface<std::string> {};

TEST_P(FailedDownloadTest, IsToldAndLeavesNothing) {
  Start();
  Listen();
  Device("1", "4");
  updateAvailable = true;
  if (!GetParam().empty()) packages.Answer(GetParam());
  TakeTraces();
  Download(Url("app-1.tgz"));
  AwaitEnd();
  const std::string traces = TakeTraces();
  EXPECT_EQ(traces.substr(traces.find("ZQUtil Update Failed!!!\n")),
            std::string("ZQUtil Update Failed!!!\n") + kDisconnected +
                "ZQUtil Destroying an http object\nZQUtil Done destroying http object\n");
  const std::string calls = engine.TakeCalls();
  const std::string failed = "<begin>,onDownloadFailed()<end>";
  ASSERT_GE(calls.size(), failed.size());
  EXPECT_EQ(calls.substr(calls.size() - failed.size()), failed);
  EXPECT_EQ(calls.find("onInstalling"), std::string::npos);
  EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
  EXPECT_FALSE(updateAvailable);
}

INSTANTIATE_TEST_SUITE_P(Server, FailedDownloadTest,
                         testing::Values("", "HTTP/1.1 404 Not Found\r\nContent-Length: 3\r\n\r\nabc",
                                         "HTTP/1.1 302 Found\r\nLocation: /x\r\nContent-Length: 0\r\n\r\n",
                                         "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly this",
                                         "HTTP/1.1 200 OK\r\nContent-Le", "nonsense"));

TEST_F(UpdateDownloadTest, ProgressIsToldInWholePercents) {
  Start();
  Listen();
  Device("0", "2");
  const std::string body(2'000'000, 'x');
  packages.AnswerBody(body);
  TakeTraces();
  Download(Url("app-1.tgz"));
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  EXPECT_EQ(ReadFile("/updates/app-1.tgz"), body);
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  PassReboot();
  AwaitEnd();
  // Each piece has its trace and its call, of the same percentage.
  std::string expected;
  std::string traces = TakeTraces();
  int pieces = 0;
  long received = 0;
  for (size_t at = traces.find("ZQUtil Download "); at != std::string::npos;
       at = traces.find("ZQUtil Download ", at + 1)) {
    int percent = -1;
    long length = 0;
    long soFar = 0;
    if (std::sscanf(traces.c_str() + at, "ZQUtil Download %d %% complete (cl=%ld, cr=%ld)", &percent, &length,
                    &soFar) != 3)
      continue;
    EXPECT_EQ(length, 2000000);
    EXPECT_GT(soFar, received);
    EXPECT_LE(soFar - received, 512000);
    EXPECT_EQ(percent, static_cast<int>(static_cast<double>(soFar) / 2000000 * 100));
    received = soFar;
    expected += "<begin>,onDownloading(<int " + std::to_string(percent) + ">)<end>";
    ++pieces;
  }
  EXPECT_GE(pieces, 3);
  expected += "<begin>,onDownloading(<int 100>)<end><begin>,onInstalling()<end><begin>,onInstalling()<end>";
  EXPECT_EQ(engine.TakeCalls(), expected);
}

TEST_F(UpdateDownloadTest, ABodyOfUnknownLengthIsNoProgressUntilItIsWhole) {
  Start();
  Listen();
  Device("0", "2");
  packages.Answer(
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n6\r\n world\r\n0\r\n\r\n");
  Download(Url("app-1.tgz"));
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  EXPECT_EQ(ReadFile("/updates/app-1.tgz"), "hello world");
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  PassReboot();
  AwaitEnd();
  const std::string calls = engine.TakeCalls();
  EXPECT_EQ(calls.find("onDownloading(<int -"), std::string::npos) << calls;
  EXPECT_NE(calls.find("onDownloading(<int 100>)"), std::string::npos) << calls;
}

TEST_F(UpdateDownloadTest, ASecondDownloadIsRefusedWhileOneIsInProgress) {
  Start();
  Device("0", "2");
  packages.AnswerBody("the first");
  Download(Url("app-1.tgz"));
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  TakeTraces();
  Download(Url("app-2.tgz"));
  EXPECT_EQ(TakeTraces(), "");
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  PassReboot();
  AwaitEnd();
}

TEST_F(UpdateDownloadTest, DataForNobodyIsASadState) {
  Start();
  TakeTraces();
  HTTP http;
  const zq_HttpResponse response = {3, 3, "abc", 3, 200};
  HttpDownloadData(&http, &response);
  EXPECT_EQ(TakeTraces(),
            "ZQUtil Received data from zqwww on download\nZQUtil Download in a very sad state... Quenby\n");
}

TEST_F(UpdateDownloadTest, AFullDiskIsAFailedDownloadAndNoPackage) {
  Start();
  Listen();
  Device("0", "2");
  // A file that takes no byte stands where the package is written to.
  fs::create_symlink("/dev/full", OnThisMachine("/tmp/app-full.tgz"));
  packages.AnswerBody("the package");
  TakeTraces();
  Download(Url("app-full.tgz"));
  AwaitEnd();
  EXPECT_NE(TakeTraces().find("ZQUtil could not write /tmp/app-full.tgz: No space left on device\n"
                              "ZQUtil Update Failed!!!\n"),
            std::string::npos);
  EXPECT_EQ(engine.TakeCalls(), "<begin>,onDownloadFailed()<end>");
  EXPECT_FALSE(fs::is_symlink("/tmp/app-full.tgz"));
  EXPECT_TRUE(fs::is_empty("/updates"));
  EXPECT_FALSE(Exists("/tmp/reboot"));
}

TEST_F(UpdateDownloadTest, ADiskThatFillsUpWhileThePackageIsDecryptedIsNoSuccessAndTheNextTryIsOne) {
  Start();
  Device("1", "4");
  WriteFile("/tmp/packed/plain", GoodPackage());
  const ProgramResult result = RunProgram(OpenSslWords("-e", "/tmp/packed/plain", "/tmp/packed/cipher"));
  ASSERT_EQ(result.status, 0) << result.errors;
  const std::string cipher = ReadFile("/tmp/packed/cipher");
  testing::internal::CaptureStderr();
  for (const bool full : {true, false}) {
    packages.AnswerBody(cipher);
    server.AnswerBody("");
    ForgetAwaited();
    unlink("/tmp/run");
    TakeTraces();
    {
      WriteFile("/tmp/app-1.tgz", "an old one");
      const Fault fault(OnThisMachine("/tmp/app-1.tgz"), full ? "write:all:ENOSPC" : "");
      Download(Url("capp-1.tgz"));
      PassReboot();
      AwaitEnd();
    }
    EXPECT_EQ(TakeTraces().find("\nwrite error\n") != std::string::npos, full);
    EXPECT_EQ(server.Waiting(), full ? 0U : 1U);
    EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
    EXPECT_FALSE(Exists("/tmp/capp-1.tgz"));
    EXPECT_EQ(StoredKey("upack.key"), "<none>");
  }
  testing::internal::GetCapturedStderr();
}

TEST_F(UpdateDownloadTest, ADiskThatFillsUpWhileThePackageIsCopiedIsNoSuccessAndTheNextTryIsOne) {
  Start();
  Device("0", "2");
  for (const bool full : {true, false}) {
    packages.AnswerBody("the package");
    server.AnswerBody("");
    ForgetAwaited();
    TakeTraces();
    {
      const Fault fault(OnThisMachine("/updates"), full ? "write:all:ENOSPC" : "");
      Download(Url("app-1.tgz"));
      AwaitTrace("ZQUtil created /tmp/do_update");
      AwaitModuleSleeper();
    }
    EXPECT_EQ(fs::is_empty("/updates"), full) << "whole or not there";
    unlink("/tmp/do_update");
    clock.Advance(seconds(1));
    PassReboot();
    AwaitEnd();
    EXPECT_EQ(TakeTraces().find("ZQUtil could not copy /tmp/app-1.tgz to /updates\n") != std::string::npos,
              full);
    EXPECT_EQ(server.Waiting(), full ? 0U : 1U);
    EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
  }
}

TEST_F(UpdateDownloadTest, ABlankInAPackagesNameIsEncodedOnTheWayAndKeptInItsFile) {
  Start();
  Device("0", "2");
  packages.AnswerBody("the package");
  server.AnswerBody("");
  Download(Url("app-a b.tgz"));
  EXPECT_EQ(packages.NextRequest().substr(0, 39), "GET /packages/app-a%20b.tgz HTTP/1.1\r\nH");
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  EXPECT_EQ(ReadFile("/updates/app-a b.tgz"), "the package");
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(server.Waiting(), 1U);
}

TEST_F(UpdateDownloadTest, APackageThatTheShellTakesForTwoIsNotAcknowledged) {
  Start();
  Device("1", "4");
  packages.AnswerBody(GoodPackage());
  Download(Url("app-a b.tgz"));
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(server.Waiting(), 0U);
  EXPECT_FALSE(Exists("/tmp/ran"));
  EXPECT_FALSE(Exists("/tmp/app-a b.tgz"));
}

TEST_F(UpdateDownloadTest, AnAcknowledgementThatCannotBeDeliveredWaitsInTheKeyStore) {
  WriteFile("zqapplog.ini", "[config]\nhost=localhost\nsslport=" + std::to_string(RefusingPort()) + "\n");
  Start();
  Device("1", "4");
  currentUpdateId = 12;
  assignedDeviceId = 34;
  packages.AnswerBody(GoodPackage());
  TakeTraces();
  Download(Url("app-1.tgz"));
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(StoredKey("upack.key"), "12&34");
  EXPECT_NE(TakeTraces().find("Application Logging sending Request\n"
                              "ZQUtil Queuing Download Success for updateId=12\n"
                              "ZQUtil failed to connect to localhost\n"
                              "Rebooting Device from SendUpdateDownloadSuccess\n"),
            std::string::npos);
}

TEST_F(UpdateDownloadTest, AnAnswerToTheAcknowledgementIsNotRead) {
  Start();
  Device("1", "4");
  packages.AnswerBody(GoodPackage());
  server.Answer("HTTP/1.1 500 Oh\r\nContent-Length: 0\r\n\r\n");
  Download(Url("app-1.tgz"));
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(StoredKey("upack.key"), "<none>");
}

TEST_F(UpdateDownloadTest, BeginUpdateStartsTheFirstOfItsId) {
  Start();
  Device("0", "3");
  ReplaceSoftwareUpdateList({{1, "a", Url("app-a.tgz"), false},
                             {2, "b", Url("app-b.tgz"), false},
                             {2, "c", Url("app-c.tgz"), false}});
  TakeTraces();
  EXPECT_EQ(engine.Call(*util, "beginUpdate", {N(2)}, nullptr), 1);
  EXPECT_EQ(currentUpdateId, 2);
  const std::string traces = TakeTraces();
  EXPECT_EQ(traces.substr(0, traces.find("app-b.tgz is")),
            "ZQUtil Request to begin update 2\nZQUtil Starting update " + Url("app-b.tgz") +
                "\nZQUtil GetFilenameFromURL " + Url("app-b.tgz") + " returned app-b.tgz\n");
}

TEST_F(UpdateDownloadTest, BeginUpdateOfNothingDoesNothing) {
  Start();
  EXPECT_EQ(engine.Call(*util, "beginUpdate", {N(7)}, nullptr), 1) << "no list";
  ReplaceSoftwareUpdateList({{1, "a", "p", false}});
  TakeTraces();
  EXPECT_EQ(engine.Call(*util, "beginUpdate", {N(7)}, nullptr), 1);
  EXPECT_EQ(TakeTraces(), "ZQUtil Request to begin update 7\n");
  EXPECT_EQ(engine.Call(*util, "beginUpdate", {}, nullptr), 1);
  EXPECT_EQ(engine.Call(*util, "beginUpdate", {ZQ_VALUE_NULL}, nullptr), 1);
  EXPECT_EQ(engine.Call(*util, "beginUpdate", {S("1")}, nullptr), 1);
  EXPECT_EQ(currentUpdateId, 0);
  EXPECT_EQ(TakeTraces(), "");
}

TEST_F(UpdateDownloadTest, FactoryResetAsksTheSystem) {
  Start();
  EXPECT_EQ(engine.Call(*util, "factoryReset", {}, nullptr), 1);
  EXPECT_EQ(ReadFile("/tmp/factory_reset"), "1");
  EXPECT_EQ(TakeTraces(),
            "ZQUtil creating /tmp/factory_reset\nZQUtil created /tmp/factory_reset\n"
            "ZQUtil done /tmp/factory_reset\n");
}

TEST_F(UpdateDownloadTest, AForcedUpdateGoesAllTheWayFromTheCheck) {
  Start();
  Listen();
  Device("1", "4");
  server.AnswerBody("<x><deviceid yourId=\"34\"/>" + Update(12, Url("app-1.tgz"), true) + "</x>");
  server.AnswerBody("");
  packages.AnswerBody(GoodPackage());
  ASSERT_TRUE(PostToQueue(ZQ_MSG_TIMER, 0, kTimerSoftwareUpdate));
  EXPECT_EQ(server.NextRequest().substr(0, 4), "GET ");
  const std::string acknowledgement = server.NextRequest();
  EXPECT_NE(acknowledgement.find("deviceId=\"34\" updateId=\"12\""), std::string::npos);
  PassReboot();
  AwaitEnd();
  EXPECT_EQ(engine.TakeCalls(),
            "<begin>,forcedUpdateAvailable()<end><begin>,onDownloading(<int 100>)<end>"
            "<begin>,onInstalling()<end><begin>,onInstalling()<end>");
}

TEST_F(UpdateDownloadTest, ADownloadThatFailsWhileTheSingletonGoesLeavesNothingAndTheNextOneBegins) {
  for (int round = 0; round < 20; ++round) {
    Start();
    Device("0", "2");
    packages.Answer("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly this");
    ForgetAwaited();
    Download(Url("app-1.tgz"));
    packages.NextRequest();
    Drop(*util);
    AwaitTrace("ZQUtil Received a disconnect notification from zqwww on downloading an update");
    EXPECT_FALSE(Exists("/tmp/app-1.tgz"));
    EXPECT_FALSE(updateAvailable);
  }
}

TEST_F(UpdateDownloadTest, ADownloadThatOutlivesTheSingletonEndsByItself) {
  Start();
  Device("0", "2");
  packages.AnswerBody("the package");
  Download(Url("app-1.tgz"));
  AwaitTrace("ZQUtil created /tmp/do_update");
  AwaitModuleSleeper();
  Drop(*util);
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  unlink("/tmp/do_update");
  clock.Advance(seconds(1));
  const auto over = [&] {
    return trace.Has("ZQUtil Received a disconnect notification from zqwww on downloading an update");
  };
  for (int i = 0; i < 60000 && !over(); ++i) {
    clock.Advance(seconds(1));
    usleep(1000);
  }
  EXPECT_TRUE(over());
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
}

}  // namespace
