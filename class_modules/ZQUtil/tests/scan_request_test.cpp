// A scan's way through the driver: each request, each wait, each refusal.
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>

#include "ScanRetry.h"
#include "scan_fixture.h"
#include "wireless_calls.h"

namespace {

const std::string kStart = "ZQUtil GetESSIDList\nWireless interface on intel is ra0\n";
constexpr char kBegin[] = "socket\ntype ra0 active 0\nrange ra0\nscan ra0\nwait 250000\n";

TEST_F(ScanTest, AsksTheDriverStepByStep) {
  SetCells("[a]\nlevel = 196");
  EXPECT_EQ(Scan(), "a strength 54\n");
  EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) + "results ra0 4096 0\nclose\n");
  EXPECT_EQ(Traces(),
            "ZQUtil GetESSIDList\n"
            "Wireless interface on intel is ra0\n"
            "ZQUtil GetESSIDList Active Scan\n"
            "ZQUtil Version 22 Range Enc Capa is 15\n"
            "ZQUtil Initiating Scan\n"
            "ZQUtil SIOCGIWAP\n"
            "ZQUtil SIOCGIWESSID\n"
            "This is a Valid SSID\n"
            "ZQUtil SIOCGIWFREQ\n"
            "ZQUtil SIOCGIWMODE\n"
            "Encryption Key: off\n"
            "Discovered AP a Open\n"
            "ZQUtil IWEVQUAL\n"
            "=====\n"
            "ZQUtil GetESSIDList Adding a, encrypted 0, strength 54 WPA 0 TKIP 0 AES 0\n");
}

TEST_F(ScanTest, PassiveIsAnotherScanType) {
  EXPECT_EQ(Scan(nullptr, false), "");
  EXPECT_EQ(TakeWirelessCalls(),
            "socket\ntype ra0 passive 0\nrange ra0\nscan ra0\nwait 250000\nresults ra0 4096 0\nclose\n");
  EXPECT_EQ(Traces(), kStart +
                          "ZQUtil GetESSIDList Passive Scan\nZQUtil Version 22 Range Enc Capa is 15\n"
                          "ZQUtil Initiating Scan\n");
}

TEST_F(ScanTest, CachedListTouchesNoDriver) {
  SetCells("[a]");
  Scan();
  SetCells("[b]");
  TakeWirelessCalls();
  Traces();
  EXPECT_EQ(network.getESSIDList(true, true, nullptr, false), network.essidList);
  EXPECT_EQ(Show(), "a strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(), "");
  EXPECT_EQ(Traces(), "ZQUtil GetESSIDList\n");
}

TEST_F(ScanTest, AScanThatFailsLeavesAnEmptyList) {
  SetCells("[a]");
  for (const char* call : {"socket", "range", "scan", "results", "wait"}) {
    EXPECT_EQ(Scan(), "a strength 38\n");
    FailNext(call, EIO);
    testing::internal::CaptureStderr();
    EXPECT_EQ(Scan(), "") << call;
    testing::internal::GetCapturedStderr();
  }
}

TEST_F(ScanTest, WithoutASocketNothingIsAsked) {
  FailNext("socket", EMFILE);
  Scan();
  EXPECT_EQ(TakeWirelessCalls(), "socket\n");
  EXPECT_EQ(Traces(), "ZQUtil GetESSIDList\nZQUtil GetESSIDList bad socket\n");
}

TEST_F(ScanTest, ARefusedScanTypeIsSaidAndPassedOver) {
  SetRadio("scan_type = EINVAL");
  SetCells("[a]");
  testing::internal::CaptureStderr();
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "WLSCAN_TYPE:: Invalid argument\n");
  const std::string traces = Traces();
  EXPECT_EQ(traces.substr(0, traces.find("ZQUtil Init")),
            kStart +
                "ZQUtil GetESSIDList Active Scan\nWLSCAN_TYPE Failed\n"
                "ZQUtil Version 22 Range Enc Capa is 15\n");
}

TEST_F(ScanTest, WithoutARangeThereIsNoScan) {
  SetRadio("range = EOPNOTSUPP");
  EXPECT_EQ(Scan(), "");
  EXPECT_EQ(TakeWirelessCalls(), "socket\ntype ra0 active 0\nrange ra0\nclose\n");
  EXPECT_EQ(Traces(), kStart +
                          "ZQUtil GetESSIDList Active Scan\n"
                          "ZQUtil GetESSIDList failed has_range of ra0 0\n");
}

TEST_F(ScanTest, ADriverOlderThanScansIsNotAskedForOne) {
  SetRadio("version = 13");
  EXPECT_EQ(Scan(), "");
  EXPECT_EQ(TakeWirelessCalls(), "socket\ntype ra0 active 0\nrange ra0\nclose\n");
  EXPECT_EQ(Traces(), kStart +
                          "ZQUtil GetESSIDList Active Scan\n"
                          "ZQUtil GetESSIDList failed has_range of ra0 13\n");
}

TEST_F(ScanTest, OldDriversPackTheirResultsInAnotherWay) {
  SetCells("[a]\nsecurity = mixed\nlevel = 142\n[b]\nlevel = 141");
  for (const char* version : {"14", "15", "16", "18", "19", "21"}) {
    SetRadio(std::string("version = ") + version);
    EXPECT_EQ(Scan(), "a strength 0 encrypted WPA 2 TKIP AES\nb strength -1\n") << version;
  }
  Traces();
  SetRadio("version = 14");
  Scan();
  EXPECT_NE(Traces().find("Scan\nZQUtil Version 14 Range Enc Capa is 0\nZQUtil Init"), std::string::npos);
}

TEST_F(ScanTest, ABusyDriverEndsTheScan) {
  SetRadio("scan = EBUSY");
  testing::internal::CaptureStderr();
  EXPECT_EQ(Scan(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "ioctl: Device or resource busy\n");
  EXPECT_EQ(TakeWirelessCalls(), "socket\ntype ra0 active 0\nrange ra0\nscan ra0\nclose\n");
  EXPECT_EQ(EventTraces(), "ZQUtil GetESSIDList failed initiate scan -1 \n");
}

TEST_F(ScanTest, ANetworkIsAskedForByName) {
  SetCells("[a]\n[b]");
  EXPECT_EQ(Scan("b"), "a strength 38\nb strength 38\n");
  EXPECT_EQ(
      TakeWirelessCalls(),
      "socket\ntype ra0 active 0\nrange ra0\n"
      "scan ra0 316 2: essid 1 b, bssid 1 255:255:255:255:255:255\nwait 250000\nresults ra0 4096 0\nclose\n");
  EXPECT_NE(Traces().find("is 15\nZQUtil looking for specific essid b\nZQUtil Initiating Scan\n"),
            std::string::npos);
  const std::string longest(32, 'x');
  Scan(longest.c_str());
  EXPECT_NE(TakeWirelessCalls().find("essid 32 " + longest + ", bssid 1"), std::string::npos);
  Scan("");
  EXPECT_NE(TakeWirelessCalls().find("scan ra0 316 2: essid 0 , bssid 1"), std::string::npos);
}

TEST_F(ScanTest, AHiddenNetworkIsFoundByItsName) {
  SetCells("[secret]\nhidden = yes\n[b]");
  EXPECT_EQ(Scan(), "b strength 38\n");
  EXPECT_EQ(Scan("secret"), "secret strength 38\n");
}

TEST_F(ScanTest, ANameThatIsTooLongScansEverything) {
  SetCells("[a]\n[b]");
  Traces();
  const std::string tooLong(33, 'x');
  EXPECT_EQ(Scan(tooLong.c_str()), "a strength 38\nb strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) + "results ra0 4096 0\nclose\n");
  EXPECT_NE(Traces().find("is 15\nZQUtil looking for specific essid " + tooLong +
                          "\nZQUtil ssid is too large!!!!\nZQUtil Initiating Scan\n"),
            std::string::npos);
}

TEST_F(ScanTest, ResultsThatAreNotReadyAreAskedForEachTenthOfASecond) {
  SetCells("[a]");
  for (int i = 0; i < 3; ++i) FailNext("results", EAGAIN);
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) +
                                     "results ra0 4096 0\nwait 100000\nresults ra0 4096 0\nwait 100000\n"
                                     "results ra0 4096 0\nwait 100000\nresults ra0 4096 0\nclose\n");
}

TEST_F(ScanTest, ABufferThatIsTooSmallGrowsToWhatTheDriverSays) {
  SetRadio("wants_bytes = 6000");
  SetCells("[a]");
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) + "results ra0 4096 0\nresults ra0 6000 0\nclose\n");
}

TEST_F(ScanTest, ABufferThatIsTooSmallDoublesWhenTheDriverSaysNothing) {
  SetRadio("wants_bytes = 30000\ntells_length = no");
  SetCells("[a]");
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) +
                                     "results ra0 4096 0\nresults ra0 8192 0\nresults ra0 16384 0\n"
                                     "results ra0 32768 0\nclose\n");
}

TEST_F(ScanTest, ADriverThatIsNeverContentIsGivenUp) {
  SetRadio("wants_bytes = 70000\ntells_length = no");
  SetCells("[a]");
  EXPECT_EQ(Scan(), "");
  EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) +
                                     "results ra0 4096 0\nresults ra0 8192 0\nresults ra0 16384 0\n"
                                     "results ra0 32768 0\nresults ra0 65535 0\nclose\n");
  EXPECT_EQ(EventTraces(), "ZQUtil GetESSIDList Error\n");
}

TEST_F(ScanTest, AnOldDriverIsAskedAgainWithTheSameBufferAndTheWaitThatIsLeft) {
  SetRadio("version = 16");
  SetCells("[a]");
  FailNext("results", E2BIG, 6000);
  FailNext("results", E2BIG, 6000);
  FailNext("results", EAGAIN);
  FailNext("results", E2BIG);
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(),
            std::string(kBegin) +
                "results ra0 4096 0\nwait 0\nresults ra0 4096 0\nwait 0\nresults ra0 4096 0\n"
                "wait 100000\nresults ra0 4096 0\nwait 0\nresults ra0 4096 0\nclose\n");
}

TEST_F(ScanTest, AGrownBufferKeepsItsSizeWhileResultsAreNotReady) {
  SetCells("[a]");
  FailNext("results", E2BIG, 5000);
  FailNext("results", EAGAIN, 17);
  FailNext("results", E2BIG, 4000);
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(),
            std::string(kBegin) +
                "results ra0 4096 0\nresults ra0 5000 0\nwait 100000\nresults ra0 5000 0\n"
                "results ra0 10000 0\nclose\n");
}

TEST_F(ScanTest, AnInterruptedWaitGoesOn) {
  SetCells("[a]");
  FailNext("wait", EINTR);
  FailNext("wait", EAGAIN);
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_EQ(TakeWirelessCalls(),
            std::string(kBegin) + "wait 125000\nwait 62500\nresults ra0 4096 0\nclose\n");
}

TEST_F(ScanTest, AWaitThatFailsEndsTheScan) {
  FailNext("wait", EBADF);
  EXPECT_EQ(Scan(), "");
  EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) + "close\n");
  EXPECT_EQ(EventTraces(), "ZQUtil GetESSIDList Error\n");
}

TEST_F(ScanTest, AnyOtherRefusalEndsTheScan) {
  for (const char* error : {"EIO", "ENODEV", "ENODATA", "ENETDOWN"}) {
    SetRadio(std::string("results = ") + error);
    EXPECT_EQ(Scan(), "");
    EXPECT_EQ(TakeWirelessCalls(), std::string(kBegin) + "results ra0 4096 0\nclose\n") << error;
    EXPECT_EQ(EventTraces(), "ZQUtil GetESSIDList Error\n") << error;
  }
}

TEST_F(ScanTest, ALengthBeyondTheBufferIsNotBelieved) {
  SetResults(Air().Name("a").Bytes(), 60000);
  EXPECT_EQ(Scan(), "a strength 0\n");
}

TEST_F(ScanTest, WaitsForReal) {
  SetCells("[a]");
  SetRadio("results_ms = 300");
  WaitForReal(true);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(Scan(), "a strength 38\n");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
}

TEST(ScanRetry, FollowsTheTable) {
  using Step = ScanRetry::Step;
  const auto Check = [](int error, int version, uint32_t size, uint32_t reported, Step step, uint32_t next) {
    const ScanRetry retry = AfterRefusal(error, version, size, reported);
    EXPECT_EQ(retry.step, step) << error << " " << version << " " << size << " " << reported;
    EXPECT_EQ(step == Step::kGiveUp ? 0 : retry.size, next) << version << " " << size << " " << reported;
  };
  Check(EAGAIN, 22, 4096, 9999, Step::kAskLater, 4096);
  Check(EAGAIN, 14, 4096, 0, Step::kAskLater, 4096);
  Check(E2BIG, 17, 4096, 6000, Step::kAskAtOnce, 6000);
  Check(E2BIG, 17, 4096, 4097, Step::kAskAtOnce, 4097);
  Check(E2BIG, 17, 4096, 4096, Step::kAskAtOnce, 8192);
  Check(E2BIG, 17, 4096, 0, Step::kAskAtOnce, 8192);
  Check(E2BIG, 16, 4096, 6000, Step::kAskInTurn, 4096);
  Check(E2BIG, 22, 40000, 0, Step::kAskAtOnce, 65535);
  Check(E2BIG, 22, 65535, 65535, Step::kGiveUp, 0);
  Check(EIO, 22, 4096, 6000, Step::kGiveUp, 0);
  Check(EINTR, 22, 4096, 0, Step::kGiveUp, 0);
}

}  // namespace
