// The module on a simulated device, with an update server and a server of packages on this machine.
#ifndef ZQUTIL_TESTS_UPDATE_FIXTURE_H
#define ZQUTIL_TESTS_UPDATE_FIXTURE_H

#include <string>

#include "http_peer.h"
#include "module_fixture.h"

class UpdateTest : public ModuleTest {
 protected:
  UpdateTest();
  ~UpdateTest() override;

  ZQUtil& Singleton() { return *ZQUtil::m_pInstance; }
  // A running module whose start-up traces are behind it.
  void Start();
  Object& Listen();
  Object& ListenForConnectivity();

  // One check, started as the timer does; returns when it is over.
  void Check();
  uint32_t Remaining(uint32_t timer);

  // The module's own traces since the last time, each with its line break; those of libraries and of the light-sensor
  // thread are left out.
  std::string TakeTraces();
  // Returns when the module traced the text since the last ForgetAwaited; throws when it does not come.
  void AwaitTrace(const std::string& text);
  void ForgetAwaited() { awaitedFrom_ = trace.Texts().size(); }

  // An element of an answer.
  static std::string Update(int32_t id, const std::string& path, bool forced,
                            const std::string& comment = "c");
  // The URL of a package at the server of packages.
  std::string Url(const std::string& name) const;
  static void Device(const char* bootloaderVersion, const char* partitions);

  // As the light-sensor thread is one: returns when another thread of the module sleeps as well.
  void AwaitModuleSleeper() { clock.AwaitSleepers(2); }
  // A download's way from its last byte: the device does not reboot, so the five seconds for that go by.
  void PassReboot();

  HttpPeer server{HttpPeer::kHttps};
  HttpPeer packages{HttpPeer::kHttp};
  Object* util = nullptr;

 private:
  size_t tracesTaken_ = 0;
  size_t awaitedFrom_ = 0;
};

#endif
