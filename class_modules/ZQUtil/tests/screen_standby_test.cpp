// Standby on each answer that an X server can give: what the server is asked, in order, and what is traced.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <thread>
#include <utility>

#include "ZQScreen.h"
#include "loopback_listener.h"
#include "module_fixture.h"
#include "temp_dir.h"
#include "x_server.h"
// After GoogleTest, whose names its macros would change.
#include <X11/Xlib.h>

namespace {

// The answers of the simulated server.
struct Answers {
  std::string server = "simulated";
  std::string timeouts = "600,700,800";
  bool extension = true;
  bool capable = true;
  bool enable = true;
  bool getTimeouts = true;
  bool setTimeouts = true;
  bool forceLevel = true;
};

std::string Works(bool works) {
  return works ? "works\n" : "fails\n";
}

// What $DISPLAY calls the server at a port of this machine: ports of displays begin at 6000.
std::string DisplayAt(uint16_t port) {
  return "127.0.0.1:" + std::to_string(port - 6000);
}

constexpr char kTraceStart[] = "ZQUtil GUI Call to ScreenStandby\nIn ScreenStandby\n";
constexpr char kKept[] =
    "XOpenDisplay,DPMSQueryExtension,DPMSCapable,DPMSEnable,DPMSGetTimeouts,XFlush,DPMSForceLevel "
    "standby,XFlush,";
constexpr char kCompleted[] =
    "XOpenDisplay,DPMSQueryExtension,DPMSCapable,DPMSEnable,DPMSGetTimeouts,DPMSSetTimeouts 900 1200 1800,"
    "XFlush,DPMSForceLevel standby,XFlush,";

class ScreenStandbyTest : public ModuleTest {
 protected:
  // What the module saves at its start has been traced before a test listens.
  ScreenStandbyTest() : util_(New()) { Settle(); }
  ~ScreenStandbyTest() override { unsetenv("DISPLAY"); }

  static void Set(const Answers& answers) {
    WriteFile(OnThisMachine("/hw/display.ini"),
              "server = " + answers.server + "\nextension = " + (answers.extension ? "yes" : "no") +
                  "\ncapable = " + Works(answers.capable) + "enable = " + Works(answers.enable) +
                  "get_timeouts = " + Works(answers.getTimeouts) + "set_timeouts = " +
                  Works(answers.setTimeouts) + "force_level = " + Works(answers.forceLevel) +
                  "timeouts = " + answers.timeouts + "\nlevel = on\n");
    WriteFile(OnThisMachine("/hw/display.calls"), "");
  }

  // What the server was asked, a comma behind each.
  static std::string Calls() {
    std::string calls = ReadFile(OnThisMachine("/hw/display.calls"));
    std::replace(calls.begin(), calls.end(), '\n', ',');
    return calls;
  }

  // What the server was asked by one call of a script's on it.
  std::string Ask(const Answers& answers) {
    Set(answers);
    ForgetTraces();
    EXPECT_EQ(engine.Answer(util_, "screenStandby"), "<void>");
    return Calls();
  }

  // The traces of the last Ask, behind those of every call.
  std::string Failures() const {
    const std::string all = Traces();
    EXPECT_EQ(all.rfind(kTraceStart, 0), 0U) << all;
    return all.substr(std::min(all.size(), sizeof kTraceStart - 1));
  }

  // What display.ini says of the display: "TIMEOUTS LEVEL".
  static std::string State() {
    const std::string text = ReadFile(OnThisMachine("/hw/display.ini"));
    const size_t timeouts = text.find("timeouts = ", text.find("force_level")) + 11;
    const size_t level = text.find("level = ", timeouts) + 8;
    const auto line = [&](size_t at) { return text.substr(at, text.find('\n', at) - at); };
    return line(timeouts) + " " + line(level);
  }

 private:
  Object& util_;
};

TEST_F(ScreenStandbyTest, KeepsTimeoutsThatAreAllSet) {
  EXPECT_EQ(Ask({}), kKept);
  EXPECT_EQ(Failures(), "");
  EXPECT_EQ(State(), "600,700,800 standby");
  EXPECT_EQ(Ask({.timeouts = "1,1,1"}), kKept);
  EXPECT_EQ(Ask({.timeouts = "65535,65535,65535"}), kKept);
}

TEST_F(ScreenStandbyTest, SetsAllTimeoutsWhenAnyIsZero) {
  for (const char* timeouts : {"0,700,800", "600,0,800", "600,700,0", "0,0,800", "0,0,0"}) {
    EXPECT_EQ(Ask({.timeouts = timeouts}), kCompleted) << timeouts;
    EXPECT_EQ(Failures(), "") << timeouts;
    EXPECT_EQ(State(), "900,1200,1800 standby") << timeouts;
  }
}

TEST_F(ScreenStandbyTest, StopsWithoutADisplay) {
  EXPECT_EQ(Ask({.server = "none"}), "XOpenDisplay,");
  EXPECT_EQ(Failures(), "XOpenDisplay failed.\n");
  EXPECT_EQ(State(), "600,700,800 on");
}

TEST_F(ScreenStandbyTest, StopsWithoutTheExtension) {
  EXPECT_EQ(Ask({.extension = false}), "XOpenDisplay,DPMSQueryExtension,");
  EXPECT_EQ(Failures(), "DPMSQueryExtension failed.\n");
  EXPECT_EQ(State(), "600,700,800 on");
}

TEST_F(ScreenStandbyTest, GoesOnWhenTheDisplayIsNotCapable) {
  EXPECT_EQ(Ask({.capable = false}), kKept);
  EXPECT_EQ(Failures(), "DPMSCapable failed.\n");
}

TEST_F(ScreenStandbyTest, GoesOnWhenPowerSavingStaysOff) {
  EXPECT_EQ(Ask({.enable = false}), kKept);
  EXPECT_EQ(Failures(), "DPMSEnable failed.\n");
}

TEST_F(ScreenStandbyTest, TakesTimeoutsThatItCannotReadForZero) {
  EXPECT_EQ(Ask({.getTimeouts = false}), kCompleted);
  EXPECT_EQ(Failures(), "DPMSGetTimeouts failed.\n");
  EXPECT_EQ(State(), "900,1200,1800 standby");
}

TEST_F(ScreenStandbyTest, StopsWhenTheTimeoutsCannotBeSet) {
  EXPECT_EQ(Ask({.timeouts = "0,1,1", .setTimeouts = false}),
            "XOpenDisplay,DPMSQueryExtension,DPMSCapable,DPMSEnable,DPMSGetTimeouts,DPMSSetTimeouts 900 1200 "
            "1800,");
  EXPECT_EQ(Failures(), "DPMSSetTimeouts failed.\n");
  EXPECT_EQ(State(), "0,1,1 on");
}

TEST_F(ScreenStandbyTest, DoesNotFlushAgainWhenTheLevelIsRefused) {
  EXPECT_EQ(Ask({.forceLevel = false}),
            "XOpenDisplay,DPMSQueryExtension,DPMSCapable,DPMSEnable,DPMSGetTimeouts,XFlush,DPMSForceLevel "
            "standby,");
  EXPECT_EQ(Failures(), "DPMSForceLevel failed.\n");
  EXPECT_EQ(State(), "600,700,800 on");
}

// Every set of failing requests, with each of the timeouts zero or not.
TEST_F(ScreenStandbyTest, TracesEachFailureOfEveryCombinationInOrder) {
  for (int bits = 0; bits < 256; ++bits) {
    const auto bit = [bits](int place) { return (bits >> place & 1) != 0; };
    const Answers answers = {
        .timeouts = std::string(bit(0) ? "0" : "5") + "," + (bit(1) ? "0" : "6") + "," + (bit(2) ? "0" : "7"),
        .capable = !bit(3),
        .enable = !bit(4),
        .getTimeouts = !bit(5),
        .setTimeouts = !bit(6),
        .forceLevel = !bit(7)};
    std::string calls = "XOpenDisplay,DPMSQueryExtension,DPMSCapable,DPMSEnable,DPMSGetTimeouts,";
    std::string failures;
    if (!answers.capable) failures += "DPMSCapable failed.\n";
    if (!answers.enable) failures += "DPMSEnable failed.\n";
    if (!answers.getTimeouts) failures += "DPMSGetTimeouts failed.\n";
    const bool sets = !answers.getTimeouts || answers.timeouts != "5,6,7";
    if (sets) calls += "DPMSSetTimeouts 900 1200 1800,";
    if (sets && !answers.setTimeouts) {
      failures += "DPMSSetTimeouts failed.\n";
    } else {
      calls +=
          answers.forceLevel ? "XFlush,DPMSForceLevel standby,XFlush," : "XFlush,DPMSForceLevel standby,";
      if (!answers.forceLevel) failures += "DPMSForceLevel failed.\n";
    }
    EXPECT_EQ(Ask(answers), calls) << bits;
    EXPECT_EQ(Failures(), failures) << bits;
  }
}

TEST_F(ScreenStandbyTest, OpensAConnectionAtEachCallAndClosesNone) {
  Set({});
  for (int call = 0; call < 1000; ++call) ZQUtil::m_pInstance->screen->ScreenStandby();
  std::string all;
  for (int call = 0; call < 1000; ++call) all += kKept;
  EXPECT_TRUE(Calls() == all);
}

TEST_F(ScreenStandbyTest, DoesNothingWithoutTheScreen) {
  ZQScreen* const screen = std::exchange(ZQUtil::m_pInstance->screen, nullptr);
  EXPECT_EQ(Ask({}), "");
  ZQUtil::m_pInstance->screen = screen;
  EXPECT_EQ(Traces(), "ZQUtil GUI Call to ScreenStandby\n");
}

TEST_F(ScreenStandbyTest, SaysThatThisMachineHasNoDisplay) {
  unsetenv("DISPLAY");
  EXPECT_EQ(Ask({.server = "real"}), "");
  EXPECT_EQ(Failures(), "XOpenDisplay failed.\n");
}

// Servers without a screen do not know power saving.
TEST_F(ScreenStandbyTest, SaysThatAServerDoesNotKnowPowerSaving) {
  XServer server;
  ASSERT_NE(server.Display(), "");
  setenv("DISPLAY", server.Display().c_str(), 1);
  EXPECT_EQ(Ask({.server = "real"}), "");
  EXPECT_EQ(Failures(), "DPMSQueryExtension failed.\n");
  server.End();
  // Its number may be another test's by now, so the name is that of a port where there is none.
  setenv("DISPLAY", DisplayAt(RefusingPort()).c_str(), 1);
  EXPECT_EQ(Ask({.server = "real"}), "");
  EXPECT_EQ(Failures(), "XOpenDisplay failed.\n") << "the server that was asked before is gone";
}

// Stands between a program and a server, which is gone as soon as the program asks for DPMS.
class EndingServer {
 public:
  explicit EndingServer(const std::string& display) : thread_([this, display] { Serve(display); }) {}
  EndingServer(const EndingServer&) = delete;
  EndingServer& operator=(const EndingServer&) = delete;
  ~EndingServer() { thread_.join(); }

  // What $DISPLAY is to be.
  std::string Display() const { return DisplayAt(listener_.Port()); }

 private:
  void Serve(const std::string& display) {
    const int program = listener_.Accept();
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // The kernel's own name for the socket, which needs no file.
    const std::string name = "/tmp/.X11-unix/X" + display.substr(1);
    name.copy(address.sun_path + 1, sizeof address.sun_path - 2);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    if (connect(server, reinterpret_cast<sockaddr*>(&address), length) == 0) Relay(program, server);
    close(server);
    close(program);
  }

  static void Relay(int program, int server) {
    pollfd ends[] = {{program, POLLIN, 0}, {server, POLLIN, 0}};
    while (poll(ends, 2, 60000) > 0) {
      for (const bool fromProgram : {true, false}) {
        if (ends[fromProgram ? 0 : 1].revents == 0) continue;
        char block[65536];
        const ssize_t count = read(fromProgram ? program : server, block, sizeof block);
        if (count <= 0) return;
        const std::string bytes(block, static_cast<size_t>(count));
        if (fromProgram && bytes.find("DPMS") != std::string::npos) return;
        if (write(fromProgram ? server : program, bytes.data(), bytes.size()) != count) return;
      }
    }
  }

  LoopbackListener listener_;
  std::thread thread_;
};

TEST_F(ScreenStandbyTest, LivesOnWhenTheServerEndsWhileItIsAsked) {
  XServer server;
  ASSERT_NE(server.Display(), "");
  const EndingServer ending(server.Display());
  setenv("DISPLAY", ending.Display().c_str(), 1);
  EXPECT_EQ(Ask({.server = "real"}), "");
  // The library does not always notice at its first request that it got no answer.
  EXPECT_TRUE(Failures() == "DPMSQueryExtension failed.\n" ||
              Failures().rfind("DPMSCapable failed.\n", 0) == 0)
      << Failures();
  EXPECT_EQ(Ask({}), kKept) << "and the next call asks anew";
}

TEST_F(ScreenStandbyTest, GivesTheProcessItsOwnHandlerBack) {
  const auto own = [](Display*) { return 0; };
  XSetIOErrorHandler(own);
  Ask({});
  EXPECT_EQ(XSetIOErrorHandler(nullptr), XIOErrorHandler{own});
}

TEST_F(ScreenStandbyTest, LivesOnWhenAServerTakesNoMoreConnections) {
  XServer server;
  ASSERT_NE(server.Display(), "");
  setenv("DISPLAY", server.Display().c_str(), 1);
  constexpr int kMoreThanAServerTakes = 1000;
  int taken = 0;
  Ask({.server = "real"});
  while (Failures() == "DPMSQueryExtension failed.\n" && ++taken < kMoreThanAServerTakes) {
    Ask({.server = "real"});
  }
  EXPECT_EQ(Failures(), "XOpenDisplay failed.\n");
  EXPECT_GT(taken, 100);
}

}  // namespace
