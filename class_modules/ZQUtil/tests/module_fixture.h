// The module on a simulated device, called over the bare service table, on a clock that the test moves.
#ifndef ZQUTIL_TESTS_MODULE_FIXTURE_H
#define ZQUTIL_TESTS_MODULE_FIXTURE_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ZQUtil.h"
#include "bare_engine.h"
#include "manual_clock.h"
#include "trace_capture.h"

class ModuleTest : public testing::Test {
 protected:
  using Object = BareEngine::Object;

  ModuleTest();
  ~ModuleTest() override;

  // MM_Load and MM_InitWrapper, with the whole table unless `bytes` says otherwise. Returns MM_InitWrapper's
  // result.
  int32_t Load(uint32_t bytes = BareEngine::TableBytes());
  // A script object; the module is loaded first when it is not yet. Dropped at the end of the test at the
  // latest.
  Object& New();
  void Drop(Object& object);
  // MM_TermWrapper and MM_Unload after dropping what is left.
  void Unload();

  // Moves the clock until no light-sensor thread is left. Every screen must be gone.
  void EndLightSensor();
  // Tells network restarts that wait that the system's script is done, until none waits.
  void EndRestarts();

  // Returns when the module has nothing left to do at this instant: queue idle, settings written.
  static void Settle();
  // Forgets the traces so far.
  void ForgetTraces() { traceStart_ = trace.Texts().size(); }
  // The traces since ForgetTraces, each with its line break; without those of the light-sensor thread, which
  // come when they like.
  std::string Traces() const;
  // The same without news of interfaces, which come some time after a test has changed one.
  std::string TracesWithoutNews() const;

  // Posts to the living singleton's queue. False when it refuses.
  static bool PostToQueue(uint32_t type, uintptr_t param2, uint32_t param1 = 0);

  zq_Value S(const std::string& text) { return engine.String(text); }
  static zq_Value N(int32_t number) { return ZQ_VALUE_FROM_INT(number); }

  ManualClock clock;
  TraceCapture trace;
  BareEngine engine;

 private:
  const ptrdiff_t threadsBefore_;
  bool loaded_ = false;
  size_t traceStart_ = 0;
  std::vector<Object*> live_;
};

// The device's own state, put back by each test's start.
void ResetDevice();
// A port of 127.0.0.1 at which nobody ever listens: who connects is refused.
uint16_t RefusingPort();
// Where this machine keeps a file of the device, for what no program on the device can do: files of /proc and
// /sys that come and go.
std::string OnThisMachine(const std::string& devicePath);
// What the device's settings file says under [config]; "<none>" when it says nothing.
std::string StoredSetting(const std::string& key, const std::string& file = "zqutil.ini");
// What the key store says; "<none>" when it lacks the key, "<closed>" when it cannot be opened.
std::string StoredKey(const std::string& key);
void StoreKey(const std::string& key, const std::string& value);
// While it lives the key store cannot be opened.
class ClosedKeyStore {
 public:
  ClosedKeyStore();
  ClosedKeyStore(const ClosedKeyStore&) = delete;
  ClosedKeyStore& operator=(const ClosedKeyStore&) = delete;
  ~ClosedKeyStore();
};

#endif
