// The signal of the network that the radio has joined.
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include "module_fixture.h"
#include "scan_fixture.h"
#include "wireless_calls.h"
#include "zq_memory.h"

namespace {

struct Freed {
  void operator()(_ESSIDStruct* record) const {
    zq__free(record->ESSID, "test", __LINE__);
    zq__free(record, "test", __LINE__);
  }
};

class SignalTest : public ScanTest {
 protected:
  SignalTest() {
    StoreKey("net.wifi", "YES");
    SetLink("associated = yes\nessid = net\nlevel = 196\nup = yes", "ip = 10.0.0.7");
  }
  ~SignalTest() override { ResetDevice(); }

  static void SetLink(const std::string& link, const std::string& address, const std::string& driver = "") {
    SetRadio(driver + "\n[link]\n" + link + "\n[address]\n" + address);
  }
  std::string Info(const char* essid) {
    Traces();
    TakeWirelessCalls();
    const std::unique_ptr<_ESSIDStruct, Freed> record(network.GetESSIDInfo(essid));
    return record != nullptr ? ::Show(*record) : "none";
  }
};

TEST_F(SignalTest, IsTheAssociationsWhateverNameIsAsked) {
  EXPECT_EQ(Info("net"), "net strength 54\n");
  EXPECT_EQ(Info("another"), "another strength 54\n");
  EXPECT_EQ(Info(""), " strength 54\n");
  SetCells("[net]\nsecurity = wpa2");
  EXPECT_EQ(Info("net"), "net strength 54\n") << "no scan is made";
}

TEST_F(SignalTest, AsksBothRequestsOfTheRadio) {
  Info("net");
  const std::string calls = TakeWirelessCalls();
  EXPECT_EQ(calls.substr(0, calls.find("socket", 7)), "socket\ntype ra0 passive 0\nstatistics ra0 32 1\n");
  EXPECT_NE(calls.find("status ra0 2047 4\n"), std::string::npos);
  const std::string traces = Traces();
  EXPECT_EQ(traces.substr(0, traces.find("Creating")),
            "ZQUtil scanning single SSID\n"
            "ZQUtil Getting Parameters for ssid net\n"
            "Wireless interface on intel is ra0\n"
            "ZQUtil putting in passive mode\n"
            "ZQUtil getting stats\n"
            "ZQUtil Strength is 54\n");
  const std::string end = "Checking Connected Status\n";
  EXPECT_EQ(traces.substr(traces.size() - end.size()), end);
}

TEST_F(SignalTest, IsZeroWhileNotConnected) {
  SetLink("associated = no\nlevel = 196\nup = yes", "ip = 10.0.0.7");
  EXPECT_EQ(Info("net"), "net strength 0\n");
  const std::string end = "Checking Connected Status\nOverriding strength value because not connected\n";
  const std::string traces = Traces();
  EXPECT_EQ(traces.substr(traces.size() - end.size()), end);
  EXPECT_NE(traces.find("ZQUtil Strength is -142\n"), std::string::npos);
  SetLink("associated = yes\nlevel = 100\nup = yes", "");
  EXPECT_EQ(Info("net"), "net strength 0\n") << "no address";
}

TEST_F(SignalTest, MayBeBelowZero) {
  SetLink("associated = yes\nlevel = 100\nup = yes", "ip = 10.0.0.7");
  EXPECT_EQ(Info("net"), "net strength -42\n");
}

TEST_F(SignalTest, NeedsNoScanType) {
  SetLink("associated = yes\nlevel = 196\nup = yes", "ip = 10.0.0.7", "scan_type = EIO");
  EXPECT_EQ(Info("net"), "net strength 54\n");
}

TEST_F(SignalTest, WithoutStatisticsThereIsOnlyTheName) {
  SetLink("associated = yes\nlevel = 196\nup = yes", "ip = 10.0.0.7", "statistics = EOPNOTSUPP");
  EXPECT_EQ(Info("net"), "net strength 0\n");
  EXPECT_EQ(TakeWirelessCalls(), "socket\ntype ra0 passive 0\nstatistics ra0 32 1\nclose\n");
  EXPECT_EQ(Traces(),
            "ZQUtil scanning single SSID\nZQUtil Getting Parameters for ssid net\n"
            "Wireless interface on intel is ra0\nZQUtil putting in passive mode\nZQUtil getting stats\n");
}

TEST_F(SignalTest, WithoutASocketThereIsOnlyTheName) {
  Traces();
  TakeWirelessCalls();
  FailNext("socket", EMFILE);
  EXPECT_EQ(Info("net"), "net strength 0\n");
  EXPECT_EQ(TakeWirelessCalls(), "socket\n");
  EXPECT_EQ(Traces(), "ZQUtil scanning single SSID\nZQUtil Getting Parameters for ssid net\n");
}

TEST_F(SignalTest, WithoutANameThereIsAnEmptyRecord) {
  EXPECT_EQ(Info(nullptr), "(null) strength 0\n");
  EXPECT_EQ(Traces(), "ZQUtil scanning single SSID\n");
}

}  // namespace
