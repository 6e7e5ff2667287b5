// What a software update costs beside what an engineer would take instead: decryption beside the openssl command, a
// captured command beside popen, and the way from a connectivity check to its listener beside one bare connection of the
// transport library. Runs on a simulated device, and starts itself again there.
#include <curl/curl.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "ZQPopen.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUtil.h"
#include "ZQUtilEntryPoints.h"
#include "bare_engine.h"
#include "http_peer.h"
#include "ratio.h"
#include "temp_dir.h"
#include "update_key_text.h"
#include "zq_thread.h"

namespace {

constexpr size_t kPackageBytes = size_t{100} << 20;
constexpr int kDecryptRounds = 3;
constexpr int kCommands = 100;
constexpr int kConnections = 200;

std::string OpenSsl(const char* direction, const std::string& in, const std::string& out) {
  std::string command;
  for (const std::string& word : OpenSslWords(direction, in, out)) command += word + " ";
  return command;
}

void Must(bool held, const char* what) {
  if (held) return;
  std::fprintf(stderr, "update_bench: %s\n", what);
  std::exit(1);
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// The processor time of a piece of work, its own or that of the programs it starts: a crowded machine does not count.
template <typename Work>
double Used(int who, const Work& work) {
  const auto now = [who] {
    rusage usage{};
    getrusage(who, &usage);
    return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  };
  const double before = now();
  work();
  return now() - before;
}

bool MeasureDecryption() {
  // On the machine, where the device's library maps no path.
  const TempDir folder("/dev/shm");
  WriteFile(folder / "plain", std::string(kPackageBytes, 'p'));
  Must(std::system(OpenSsl("-e", folder / "plain", folder / "cipher").c_str()) == 0, "no package");
  const auto ours = [&] {
    const int in = open((folder / "cipher").c_str(), O_RDONLY | O_CLOEXEC);
    const int out = open((folder / "ours").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    ZQUtil::update_decrypt(in, out);
    close(in);
    close(out);
  };
  const auto theirs = [&] {
    Must(std::system(OpenSsl("-d", folder / "cipher", folder / "theirs").c_str()) == 0, "not decrypted");
  };
  bench::Pair best;
  for (int round = 0; round < kDecryptRounds; ++round) {
    best.ours = std::min(best.ours, Used(RUSAGE_THREAD, ours));
    best.theirs = std::min(best.theirs, Used(RUSAGE_CHILDREN, theirs));
  }
  Must(std::filesystem::file_size(folder / "ours") == kPackageBytes, "decrypted to something else");
  std::printf("100 MiB decrypted: %.3f s of a processor, openssl enc %.3f s\n", best.ours, best.theirs);
  // Nine tenths of its rate.
  return bench::Report("decryption's time against openssl enc", best.Ratio(), 1 / 0.9);
}

bool MeasureCommands() {
  const auto ours = [] { Must(ZQPopen("true", nullptr, nullptr, '\n'), "not run"); };
  const auto theirs = [] {
    std::FILE* const pipe = popen("sh -c \"(true)\"", "r");
    Must(pipe != nullptr && pclose(pipe) == 0, "not run");
  };
  const bench::Pair best = bench::Best(kCommands, ours, theirs);
  std::printf("ZQPopen: %.0f us, popen %.0f us\n", best.ours * 1e6, best.theirs * 1e6);
  return bench::Report("ZQPopen of true against popen of the same shells", best.Ratio(), 1.2);
}

// What a check says on standard output is no result.
class QuietOutput {
 public:
  QuietOutput() {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;
  ~QuietOutput() {
    std::fflush(stdout);
    dup2(before_, STDOUT_FILENO);
    close(before_);
  }

 private:
  const int before_ = dup(STDOUT_FILENO);
};

std::atomic<int> g_heard = 0;

int32_t Hear(void*, const char*, uint32_t, zq_Value*, zq_Value*) {
  ++g_heard;
  g_heard.notify_all();
  return 1;
}

bool MeasureConnectivity() {
  HttpPeer server(HttpPeer::kHttps);
  const std::string port = std::to_string(server.Port());
  WriteFile("zqapplog.ini", "[config]\nhost=localhost\nsslport=" + port + "\n");
  ZQUtil::myDeviceID = 1;  // or a timer would check as well
  BareEngine engine;
  engine.Table()[ZQ_SLOT_CALL_METHOD] = reinterpret_cast<uintptr_t>(Hear);
  MM_Load();
  MM_InitWrapper(engine.Table(), BareEngine::TableBytes());
  BareEngine::Object& util = engine.Construct();
  ZQUtil& module = *ZQUtil::m_pInstance;
  module.connectivityListener = &engine.NewObject();

  const auto check = [&] {
    server.AnswerBody("<x/>");
    module.connectivityReported = false;
    const int heard = g_heard;
    const double seconds = bench::Seconds([&] {
      module.CheckForAvailableUpdates();
      g_heard.wait(heard);
    });
    // Out of the measured time: the request and its answer.
    Must(zq_ThreadAwaitEnd(threadCheckForAvailableUpdates, 60000), "a check that does not end");
    return seconds;
  };
  const auto connect = [&] {
    CURL* const curl = curl_easy_init();
    const std::string url = "https://localhost:" + port + "/";
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_CONNECT_ONLY, 1L);
    // Less than the module's trust, which has the system's authorities besides.
    curl_easy_setopt(curl, CURLOPT_CAINFO, std::getenv("ZQ_CA_FILE"));
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    Must(curl_easy_perform(curl) == CURLE_OK, "no connection");
    curl_easy_cleanup(curl);
  };
  bench::Pair best;
  {
    const QuietOutput quiet;
    for (int round = 0; round < kConnections; ++round) {
      best.ours = std::min(best.ours, check());
      best.theirs = std::min(best.theirs, bench::Seconds(connect));
    }
  }
  std::printf("check to onConnectSuccess: %.0f us, a bare connection %.0f us\n", best.ours * 1e6,
              best.theirs * 1e6);
  BareEngine::Finalize(util);
  MM_TermWrapper();
  return bench::Report("from a check to onConnectSuccess against one bare connection", best.Ratio(), 1.5);
}

int MeasureHere() {
  bool kept = MeasureDecryption();
  kept = MeasureCommands() && kept;
  kept = MeasureConnectivity() && kept;
  std::fflush(stdout);
  return kept ? 0 : 1;
}

}  // namespace

int main() {
  if (std::getenv("ZQ_DEVICE") != nullptr) return MeasureHere();
  const TempDir folder("/dev/shm");
  const std::string command = "ZQ_TRACE=off '" ZQ_SIM_PROGRAM "' run '" + (folder / "device") + "' -- '" +
                              std::filesystem::read_symlink("/proc/self/exe").string() + "'";
  const int status = std::system(command.c_str());
  return status == 0 ? 0 : 1;
}
