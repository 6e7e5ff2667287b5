// The HTTP library against what a user would pick instead, from one nginx on this machine: a download against
// curl, a request over TLS against one bare connection of libcurl.
#include <curl/curl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>

#include "nginx_server.h"
#include "ratio.h"
#include "zq_memory.h"
#include "zqwww.h"

namespace {

constexpr off_t kDownload = off_t{500} << 20;
constexpr int kDownloads = 15;
// Short rounds and many: on a busy machine a long one is never left alone.
constexpr int kRequests = 2;
constexpr int kRequestRounds = 200;
constexpr double kMaxDownload = 1 / 0.8;  // time for the same bytes: at least 0.8 of the rate
constexpr double kMaxRequest = 1.5;
constexpr long kMaxGrowthKb = 8192;

void Require(bool held, const char* what) {
  if (!held) throw std::runtime_error(what);
}

// Now, not at its peak.
long ResidentKb() {
  long pages = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// Writes the body away, as an update does; notes the most memory that is in use meanwhile.
class Download : public HTTP {
 public:
  Download() : file_(std::fopen("/dev/null", "wb")) {}
  ~Download() override {
    close();
    std::fclose(file_);
  }
  void Run(const std::string& url) {
    setMaxIncomingBuffer(512000);
    const zq_URL parts(url.c_str());
    Require(connect(&parts, &OnData, nullptr, nullptr, &OnConnected, &OnDisconnected, 0) == 0, "download");
    over_.get_future().wait();
    Require(whole_, "the download is not whole");
  }
  long PeakKb() const { return peakKb_; }

 private:
  static void OnConnected(HTTP* http) {
    const std::string request = std::string("GET ") + http->url()->requestTarget() +
                                " HTTP/1.1\r\nHost: " + http->url()->hostText() + "\r\n\r\n";
    http->send(request.c_str(), static_cast<int>(request.size()));
  }
  static void OnData(HTTP* http, const zq_HttpResponse* response) {
    auto& self = static_cast<Download&>(*http);
    std::fwrite(response->chunk, 1, response->chunkLength, self.file_);
    self.whole_ = response->received == response->contentLength;
    if (++self.calls_ % 100 == 0) self.peakKb_ = std::max(self.peakKb_, ResidentKb());
  }
  static void OnDisconnected(HTTP* http) { static_cast<Download&>(*http).over_.set_value(); }

  std::FILE* file_;
  bool whole_ = false;
  int calls_ = 0;
  long peakKb_ = 0;
  std::promise<void> over_;
};

bool CompareDownloads(const NginxServer& nginx) {
  const std::string package = nginx.Folder() / "package";
  WriteFile(package, "");
  Require(truncate(package.c_str(), kDownload) == 0, "no room");
  const std::string url = "http://127.0.0.1:" + std::to_string(nginx.Port()) + "/package";
  const std::string command = "curl -s -f -o /dev/null " + url;
  const long before = ResidentKb();
  long peak = 0;
  const auto ours = [&] {
    Download download;
    download.Run(url);
    peak = std::max(peak, download.PeakKb());
  };
  const auto theirs = [&] { Require(std::system(command.c_str()) == 0, "curl"); };
  const bench::Pair pair = bench::Best(kDownloads, ours, theirs);
  std::printf("500 MiB: %.0f MiB/s, curl %.0f MiB/s\n", 500 / pair.ours, 500 / pair.theirs);
  const bool fast = bench::Report("a download of 500 MiB, against curl", pair.Ratio(), kMaxDownload);
  return bench::Report("MiB of memory more while it runs", static_cast<double>(peak - before) / 1024,
                       kMaxGrowthKb / 1024.0) &&
         fast;
}

size_t Append(char* bytes, size_t one, size_t count, void* body) {
  static_cast<std::string*>(body)->append(bytes, one * count);
  return one * count;
}

void AskBare(const std::string& url, const std::string& authority, const std::string& expected) {
  std::string body;
  CURL* curl = curl_easy_init();
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_CAINFO, authority.c_str());
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Append);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
  const CURLcode result = curl_easy_perform(curl);
  curl_easy_cleanup(curl);
  Require(result == CURLE_OK && body == expected, "bare request");
}

void AskOurs(int port, const std::string& expected) {
  SSLHTTP http;
  Require(http.Connect(ZQWWW_TCP, "127.0.0.1", port), "connection");
  char* answer = http.SendBody(nullptr, "https://00/answer.xml", true);
  Require(answer != nullptr && answer == expected, "request");
  zq__free(answer, __FILE__, __LINE__);
}

bool CompareRequests(const NginxServer& nginx, const std::string& authority) {
  const std::string answer = "<updates>" + std::string(1000, 'x') + "</updates>";
  WriteFile(nginx.Folder() / "answer.xml", answer);
  const std::string url = "https://127.0.0.1:" + std::to_string(nginx.TlsPort()) + "/answer.xml";
  const auto repeat = [](const std::function<void()>& work) {
    return [work] {
      for (int i = 0; i < kRequests; ++i) work();
    };
  };
  const bench::Pair pair = bench::Best(kRequestRounds, repeat([&] { AskOurs(nginx.TlsPort(), answer); }),
                                       repeat([&] { AskBare(url, authority, answer); }));
  std::printf("request: %.2f ms, libcurl %.2f ms\n", pair.ours / kRequests * 1e3,
              pair.theirs / kRequests * 1e3);
  return bench::Report("a request over TLS, against one bare connection of libcurl", pair.Ratio(),
                       kMaxRequest);
}

bool Run() {
  const TempDir folder;
  const std::string file = folder / "authority.pem";
  const Identity authority = MakeAuthority();
  WriteFile(file, CertificatePem(authority));
  setenv("ZQ_CA_FILE", file.c_str(), 1);
  for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy"}) unsetenv(name);
  const NginxServer nginx(MakeIdentity({}, &authority));
  zqwww_init();
  const bool kept = CompareDownloads(nginx);
  const bool alsoKept = CompareRequests(nginx, file);
  zqwww_term();
  return kept && alsoKept;
}

}  // namespace

int main() try { return Run() ? 0 : 1; } catch (const std::exception& error) {
  std::fprintf(stderr, "www_bench: %s\n", error.what());
  return 1;
}
