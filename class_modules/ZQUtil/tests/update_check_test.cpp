// One check for updates: what is asked, what becomes of the answer, and when the next one comes.
#include <atomic>

#include "SoftwareUpdateList.h"
#include "ZQSoftwareUpdate.h"
#include "update_fixture.h"
#include "zq_thread.h"
#include "zq_timer.h"

namespace {

using std::chrono::milliseconds;

class UpdateCheckTest : public UpdateTest {
 protected:
  // Ids and comments that GetUpdateList answers.
  std::string List() {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(*util, "GetUpdateList", {}, &result), 1);
    if (engine.Show(result) != "<object>") return engine.Show(result);
    const auto* const array = reinterpret_cast<const Object*>(result);
    std::string shown;
    uint32_t next = 0;
    for (const auto& [index, element] : array->elements) {
      EXPECT_EQ(index, next++);
      auto& properties = reinterpret_cast<Object*>(element)->properties;
      EXPECT_EQ(reinterpret_cast<Object*>(element)->order, (std::vector<std::string>{"ID", "Name"}));
      shown += engine.Show(properties["ID"]) + engine.Show(properties["Name"]) + ";";
    }
    return shown;
  }
  int32_t Register(const std::vector<zq_Value>& arguments) {
    return engine.Call(*util, "registerUpdateListener", arguments, nullptr);
  }
  std::string Property() {
    const auto& properties = engine.ClassObject().properties;
    const auto found = properties.find("UpdateListener");
    return found != properties.end() ? engine.Show(found->second) : "<none>";
  }
  // TakeTraces after a check that has reached the server for a connectivity listener: the queue's thread traces that it
  // tells, while the check goes on, sooner or later. That line is taken out.
  std::string TakeTracesOfTheCheck() {
    const std::string told = "ZQUtil Sending Connectivity Listener Success\n";
    std::string traces = TakeTraces();
    const size_t place = traces.find(told);
    EXPECT_NE(place, std::string::npos) << traces;
    if (place != std::string::npos) traces.erase(place, told.size());
    return traces;
  }
  std::string FiredAndConnected() const {
    return "ZQUtil Software Update Timer Fire (timer reset)\n"
           "ZQUtil Beginning Update\n"
           "ZQUtil Connecting to https://00/zqapplog/updateReq?mac=localhost\n"
           "ZQUtil finished connecting\n"
           "ZQUtil succesful connect\n"
           "ZQUtil Sending Body\n";
  }
};

TEST_F(UpdateCheckTest, AsksTheServerInItsOwnWords) {
  Start();
  server.AnswerBody("<x/>");
  Check();
  EXPECT_EQ(
      server.NextRequest(),
      "GET /zqapplog/updateReq?mac=localhost HTTP/1.1\r\n"
      "Host: localhost:" +
          std::to_string(server.Port()) +
          "\r\n"
          "User-Agent: Brimvale RSS transport layer\r\n"
          "Accept: text/xml, application/xml, application/xhtml+xml, text/html; q=0.9, text/plain; q=0.8\r\n"
          "Proxy-Connection: Keep-Alive\r\n\r\n");
}

TEST_F(UpdateCheckTest, SaysOnStandardOutputThatItChecks) {
  Start();
  testing::internal::CaptureStdout();
  server.AnswerBody("<x/>");
  Check();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Checking For Available Updates...\n");
}

TEST_F(UpdateCheckTest, OneOptionalUpdateWithoutAnIdentityIsListedAndTheNextCheckFollowsAfterHalfASecond) {
  Start();
  Listen();
  ListenForConnectivity();
  const std::string body =
      "<updates>" + Update(12, "http://h/app-1.tgz", false, "One &lt;1&gt;") + "</updates>";
  server.AnswerBody(body);
  Check();
  EXPECT_EQ(engine.TakeCalls(), "onConnectSuccess()") << "and no call of the update listener";
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 500U);
  EXPECT_TRUE(updateAvailable);
  const std::string traces = TakeTracesOfTheCheck();
  EXPECT_EQ(traces.substr(traces.find("ZQUtil Calling HttpProcessResponse")),
            "ZQUtil Calling HttpProcessResponse: " + body +
                "\n"
                "ZQUtil Calling dom_parse\n"
                "ZQUtil Done with dom_parse\n"
                "ZQUtil Emptying Software Update List\n"
                "ZQUtil Alerting GUI to optional update\n"
                "ZQUtil Deleting SSL Object\n"
                "ZQUtil Setting a fast timer\n");
  EXPECT_EQ(List(), "<int 12>One <1>;");
  EXPECT_EQ(TakeTraces(), "ZQUtil GUI Call to GetUpdateList\nZQUtil Returning 12, One <1>\n");
}

TEST_F(UpdateCheckTest, AHostThatMakesNoTextsGetsUpdatesWithoutAName) {
  engine.Remove(ZQ_SLOT_NEW_STRING);
  Start();
  server.AnswerBody("<updates>" + Update(12, "http://h/app-1.tgz", false) + "</updates>");
  Check();
  zq_Value result = ZQ_VALUE_VOID;
  ASSERT_EQ(engine.Call(*util, "GetUpdateList", {}, &result), 1);
  const auto& elements = reinterpret_cast<const Object*>(result)->elements;
  ASSERT_EQ(elements.size(), 1U);
  EXPECT_EQ(reinterpret_cast<const Object*>(elements.at(0))->order, std::vector<std::string>{"ID"});
}

TEST_F(UpdateCheckTest, IsTracedStepByStep) {
  Start();
  server.AnswerBody("<x/>");
  Check();
  EXPECT_EQ(TakeTraces(), FiredAndConnected() +
                              "ZQUtil Calling HttpProcessResponse: <x/>\n"
                              "ZQUtil Calling dom_parse\n"
                              "ZQUtil Done with dom_parse\n"
                              "ZQUtil Emptying Software Update List\n"
                              "ZQUtil Deleting SSL Object\n"
                              "ZQUtil Setting a fast timer\n");
  EXPECT_FALSE(updateAvailable);
}

TEST_F(UpdateCheckTest, TheListIsInTheAnswersOrderAndTheNextAnswersTakesItsPlace) {
  Start();
  EXPECT_EQ(List(), "");
  server.AnswerBody("<x>" + Update(3, "p", false, "c") + Update(1, "p", false, "a") +
                    Update(2, "p", false, "b") + "</x>");
  Check();
  EXPECT_EQ(List(), "<int 3>c;<int 1>a;<int 2>b;");
  EXPECT_EQ(updateCounter, 3);
  server.AnswerBody("<x>" + Update(4, "p", false, "d") + "</x>");
  updateAvailable = false;
  Check();
  EXPECT_EQ(List(), "<int 4>d;");
  EXPECT_EQ(updateCounter, 4) << "never reset";
  server.AnswerBody("<x/>");
  updateAvailable = false;
  Check();
  EXPECT_EQ(List(), "");
  EXPECT_FALSE(updateAvailable);
}

TEST_F(UpdateCheckTest, AnAnswerThatCannotBeReadLeavesTheListAndNothingPending) {
  Start();
  server.AnswerBody("<x>" + Update(3, "p", false, "c") + "</x>");
  Check();
  ListenForConnectivity();
  server.AnswerBody("<x><x/>");
  TakeTraces();
  Check();
  EXPECT_EQ(List(), "<int 3>c;");
  EXPECT_FALSE(updateAvailable);
  EXPECT_NE(TakeTracesOfTheCheck().find(
                "ZQUtil Calling dom_parse\nZQUtil Done with dom_parse\nZQUtil Deleting SSL Object\n"),
            std::string::npos);
}

TEST_F(UpdateCheckTest, ARefusedConnectionIsTheConnectivityListenersFailure) {
  WriteFile("zqapplog.ini", "[config]\nhost=localhost\nsslport=" + std::to_string(RefusingPort()) + "\n");
  Start();
  ListenForConnectivity();
  Check();
  EXPECT_EQ(engine.TakeCalls(), "onConnectFailure()");
  const std::string traces = TakeTraces();
  EXPECT_NE(traces.find("ZQUtil Connecting to https://00/zqapplog/updateReq?mac=localhost\n"
                        "ZQUtil finished connecting\nConnection Failed\n"),
            std::string::npos)
      << traces;
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 500U);
}

TEST_F(UpdateCheckTest, AServerThatIsNotTheOneItClaimsToBeIsNotReached) {
  HttpPeer other(HttpPeer::kHttps, "127.0.0.2");
  WriteFile("zqapplog.ini", "[config]\nhost=127.0.0.2\nsslport=" + std::to_string(other.Port()) + "\n");
  Start();
  ListenForConnectivity();
  Check();
  EXPECT_EQ(engine.TakeCalls(), "onConnectFailure()");
  EXPECT_EQ(other.NextRequest(), "") << "somebody listens there, and is asked nothing";
}

TEST_F(UpdateCheckTest, AConnectionWithoutAnAnswerIsAReachedServerAllTheSame) {
  Start();
  ListenForConnectivity();
  Check();
  EXPECT_EQ(engine.TakeCalls(), "onConnectSuccess()");
  EXPECT_NE(TakeTracesOfTheCheck().find("No Result\nZQUtil Deleting SSL Object\n"), std::string::npos);
  server.Answer("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\n<x/>");
  Check();
  EXPECT_NE(TakeTraces().find("No Result\n"), std::string::npos);
}

TEST_F(UpdateCheckTest, ADeviceIdIsKeptAndTheRegularPeriodBegins) {
  WriteFile("zqutil.ini", "[config]\nupdateTime=60000\n");
  Start();
  server.AnswerBody("<x><deviceid yourId=\"34\"/></x>");
  Check();
  EXPECT_EQ(ZQUtil::myDeviceID, 34);
  EXPECT_EQ(assignedDeviceId, 34);
  EXPECT_EQ(StoredSetting("deviceid"), "34");
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 60000U);
  const std::string traces = TakeTraces();
  EXPECT_NE(traces.find("ZQUtil Emptying Software Update List\nZQUtil Writing to file\n"), std::string::npos);
  EXPECT_NE(traces.find("ZQUtil Not setting a fast timer because deviceId is 34\n"), std::string::npos);
}

TEST_F(UpdateCheckTest, EachProcessAsksForItsDeviceIdAnewWhateverTheFileSays) {
  WriteFile("zqutil.ini", "[config]\ndeviceid=34\n");
  Start();
  EXPECT_EQ(ZQUtil::myDeviceID, 0);
  server.AnswerBody("<x/>");
  Check();
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 500U);
  EXPECT_NE(TakeTraces().find("ZQUtil Setting a fast timer\n"), std::string::npos);
}

TEST_F(UpdateCheckTest, TheDeviceIdOutlivesTheSingleton) {
  Start();
  server.AnswerBody("<x><deviceid yourId=\"34\"/></x>");
  Check();
  Drop(*util);
  Start();
  EXPECT_EQ(ZQUtil::myDeviceID, 34);
  server.AnswerBody("<x/>");
  Check();
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 1800000U);
  EXPECT_NE(TakeTraces().find("ZQUtil Not setting a fast timer because deviceId is 34\n"), std::string::npos);
}

TEST_F(UpdateCheckTest, TheSameDeviceIdIsWrittenAgainButSetsNoTimer) {
  ZQUtil::myDeviceID = 34;
  Start();
  char answer[] = "<x><deviceid yourId=\"34\"/></x>";
  HttpProcessResponse(answer);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), ZQ_TIMER_NOT_ARMED);
  Settle();
  EXPECT_EQ(StoredSetting("deviceid"), "34");
}

TEST_F(UpdateCheckTest, ADeviceWithoutAnIdentityAsksEveryHalfSecond) {
  Start();
  ListenForConnectivity();
  for (int i = 0; i < 4; ++i) server.AnswerBody("<x/>");
  server.AnswerBody("<x><deviceid yourId=\"7\"/></x>");
  Check();
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 500U);
    clock.Advance(milliseconds(500));
    Settle();
  }
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 1800000U);
  EXPECT_EQ(server.Waiting(), 5U);
}

TEST_F(UpdateCheckTest, APendingUpdateHoldsBackTheFastCheckToo) {
  Start();
  server.AnswerBody("<x>" + Update(1, "p", false) + "</x>");
  Check();
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 500U);
  TakeTraces();
  clock.Advance(milliseconds(500));
  Settle();
  EXPECT_EQ(TakeTraces(),
            "ZQUtil Software Update Timer Fire (timer reset)\n"
            "ZQUtil Software Not checking for updates : pending flag is set\n");
  EXPECT_EQ(server.Waiting(), 1U);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 1800000U);
}

TEST_F(UpdateCheckTest, TheLastOfTwoForcedUpdatesIsTheCurrentOne) {
  Start();
  Listen();
  Device("0", "3");  // which can install neither
  server.AnswerBody("<x>" + Update(1, Url("app-one.tgz"), true) + Update(2, "p", false) +
                    Update(3, Url("app-three.tgz"), true) + Update(4, "p", false) + "</x>");
  Check();
  EXPECT_EQ(currentUpdateId, 3);
  EXPECT_EQ(engine.TakeCalls(), "<begin>,forcedUpdateAvailable()<end>");
  const std::string traces = TakeTraces();
  EXPECT_NE(traces.find("ZQUtil Alerting GUI to forced update\nZQUtil Downloading Update\n"
                        "ZQUtil GetFilenameFromURL " +
                        Url("app-three.tgz") + " returned app-three.tgz\n"),
            std::string::npos)
      << traces;
}

TEST_F(UpdateCheckTest, AForcedUpdateIsDownloadedThoughNobodyListens) {
  Start();
  Device("0", "3");
  server.AnswerBody("<x>" + Update(1, Url("app-one.tgz"), true) + "</x>");
  Check();
  EXPECT_EQ(engine.TakeCalls(), "");
  const std::string traces = TakeTraces();
  EXPECT_NE(traces.find("List\nZQUtil Downloading Update\nZQUtil GetFilenameFromURL "), std::string::npos)
      << traces;
}

std::atomic<void*> g_next = nullptr;
std::atomic<void*> g_called = nullptr;

void BeginWithTheNext(void*) {
  updateListener = g_next.load();
}

int32_t NoteCalled(void* listener, const char*, uint32_t, zq_Value*, zq_Value*) {
  g_called = listener;
  return 1;
}

TEST_F(UpdateCheckTest, AListenerThatIsReplacedBeforeItsRequestBeginsIsNotCalledAnyMore) {
  engine.Table()[ZQ_SLOT_BEGIN_REQUEST] = reinterpret_cast<uintptr_t>(BeginWithTheNext);
  engine.Table()[ZQ_SLOT_CALL_METHOD] = reinterpret_cast<uintptr_t>(NoteCalled);
  Start();
  Device("0", "3");
  char answer[] = "<x><update forced='true' id='1' comment='c' path='http://h/app-1.tgz'/></x>";
  Object& next = engine.NewObject();
  for (Object* const replacement : {&next, static_cast<Object*>(nullptr)}) {
    Listen();
    g_next = replacement;
    g_called = nullptr;
    HttpProcessResponse(answer);
    EXPECT_EQ(g_called, replacement);
  }
}

TEST_F(UpdateCheckTest, WithoutUpdatesAListenerHearsNothing) {
  Start();
  Listen();
  server.AnswerBody("<x/>");
  Check();
  EXPECT_EQ(TakeTraces().find("Alerting"), std::string::npos);
}

TEST_F(UpdateCheckTest, APendingAcknowledgementIsSentAndNoCheckMade) {
  StoreKey("upack.key", "12&34");
  Start();
  server.AnswerBody("");
  ASSERT_TRUE(PostToQueue(ZQ_MSG_TIMER, 0, kTimerSoftwareUpdate));
  const std::string request = server.NextRequest();
  EXPECT_EQ(request.substr(request.find("\r\n\r\n") + 4),
            "<xml version=\"1.0\">\n<updateDone deviceId=\"34\" updateId=\"12\"/></xml>\n");
  PassReboot();
  Settle();
  EXPECT_EQ(StoredKey("upack.key"), "<none>");
  EXPECT_EQ(server.Waiting(), 0U);
  EXPECT_EQ(ReadFile("/tmp/reboot"), "1");
  const std::string traces = TakeTraces();
  EXPECT_EQ(traces.substr(0, traces.find("Reboot Device Called")),
            "ZQUtil Software Update Timer Fire (timer reset)\n"
            "ZQUtil SendUpdateDownloadedSuccess\n"
            "Application Logging sending Request\n");
  EXPECT_NE(traces.find("ZQUtil Pending Download Success ACK for updateId=12\n"), std::string::npos);
  EXPECT_EQ(traces.find("ZQUtil Beginning Update\n"), std::string::npos);
  EXPECT_EQ(traces.find("fast timer"), std::string::npos) << "the thread ends with it";
}

TEST_F(UpdateCheckTest, AnAcknowledgementThatCannotBeReadIsDroppedAndTheCheckGoesOn) {
  StoreKey("upack.key", "12");
  Start();
  server.AnswerBody("<x/>");
  Check();
  EXPECT_EQ(StoredKey("upack.key"), "<none>");
  EXPECT_EQ(server.NextRequest().substr(0, 4), "GET ");
}

TEST_F(UpdateCheckTest, WithoutTheKeyStoreTheCheckGoesOn) {
  Start();
  server.AnswerBody("<x/>");
  const ClosedKeyStore closed;
  Check();
  EXPECT_EQ(server.NextRequest().substr(0, 4), "GET ");
}

TEST_F(UpdateCheckTest, RegisteringKeepsTheListenerAndSetsTheFirstCheck) {
  Start();
  Object& listener = engine.NewObject();
  EXPECT_EQ(Register({BareEngine::Word(listener)}), 1);
  EXPECT_EQ(updateListener, &listener);
  EXPECT_EQ(Property(), "<object>");
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 4000U);
  EXPECT_EQ(
      TakeTraces(),
      "ZQUtil Registering Software Update Listener\nZQUtil Setting timer to check for software updates\n");
}

TEST_F(UpdateCheckTest, RegisteringNothingClearsTheListenerAndSetsNoTimer) {
  Start();
  const zq_Value object = BareEngine::Word(engine.NewObject());
  for (const std::vector<zq_Value>& arguments :
       {std::vector<zq_Value>{}, {ZQ_VALUE_VOID}, {ZQ_VALUE_NULL}, {object, object}}) {
    Listen();
    EXPECT_EQ(Register(arguments), 1);
    EXPECT_EQ(updateListener, nullptr);
    EXPECT_EQ(Property(), "<null>");
    EXPECT_EQ(Remaining(kTimerSoftwareUpdate), ZQ_TIMER_NOT_ARMED);
    EXPECT_EQ(TakeTraces(), "ZQUtil Registering Software Update Listener\n");
  }
}

TEST_F(UpdateCheckTest, RegisteringWhatIsNoObjectFails) {
  Start();
  EXPECT_EQ(Register({S("text")}), 0);
  EXPECT_EQ(updateListener, nullptr);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), ZQ_TIMER_NOT_ARMED);
}

TEST_F(UpdateCheckTest, AHostThatMakesNoArraysGetsNoList) {
  engine.Remove(ZQ_SLOT_NEW_ARRAY);
  Start();
  EXPECT_EQ(List(), "<void>");
}

TEST_F(UpdateCheckTest, AHostThatMakesNoObjectsGetsAnEmptyList) {
  engine.Remove(ZQ_SLOT_NEW_OBJECT);
  Start();
  ReplaceSoftwareUpdateList({{1, "a", "p", false}});
  EXPECT_EQ(List(), "");
}

TEST_F(UpdateCheckTest, TheEndOfTheSingletonForgetsTheListAndACheckUnderWayEndsByItself) {
  Start();
  ReplaceSoftwareUpdateList({{1, "a", "p", false}});
  Singleton().CheckForAvailableUpdates();
  Drop(*util);
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  EXPECT_TRUE(SoftwareUpdateListReader().Updates().empty());
  server.NextRequest();
  EXPECT_TRUE(zq_ThreadAwaitEnd(threadCheckForAvailableUpdates, 60000));
}

}  // namespace
