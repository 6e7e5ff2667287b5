// The module on a platform that refuses: no memory, no HTTP library, a disk that never answers, values that cannot
// become texts.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "ZQUtilEntryPoints.h"
#include "ZQUtilPersistence.h"
#include "module_fixture.h"
#include "refused_memory.h"
#include "zq_memory.h"
#include "zq_thread.h"
#include "zqwww.h"

namespace {

template <typename Call>
Call Next(const char* name) {
  return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

// Of this thread's allocations so many succeed and one then fails; below 0 none does.
thread_local int g_allocationsUntilFailure = -1;
bool Refused() {
  return g_allocationsUntilFailure >= 0 && g_allocationsUntilFailure-- == 0;
}

std::string g_httpCalls;
bool g_httpRefuses = false;

// How long the settings' writers are waited for; their disk never answers while it is not null.
uint32_t* g_waited = nullptr;

}  // namespace

// The module finds these before the platform's own.
#define REFUSING extern "C" __attribute__((visibility("default")))

REFUSING void* zq__calloc(size_t count, size_t size, const char* file, int line) {
  return Refused() ? nullptr : Next<decltype(&zq__calloc)>("zq__calloc")(count, size, file, line);
}
REFUSING char* zq__newString(const char* text, const char* file, int line) {
  return Refused() ? nullptr : Next<decltype(&zq__newString)>("zq__newString")(text, file, line);
}
REFUSING int zqwww_init() {
  g_httpCalls += "init ";
  return g_httpRefuses ? 0 : Next<decltype(&zqwww_init)>("zqwww_init")();
}
REFUSING void zqwww_term() {
  g_httpCalls += "term ";
  Next<decltype(&zqwww_term)>("zqwww_term")();
}
REFUSING bool zq_ThreadAwaitEnd(zq_ThreadFunction function, uint32_t milliseconds) {
  if (g_waited != nullptr && function == threadConfigWrite) {
    *g_waited = milliseconds;
    return false;
  }
  return Next<decltype(&zq_ThreadAwaitEnd)>("zq_ThreadAwaitEnd")(function, milliseconds);
}

namespace {

namespace fs = std::filesystem;

class RefusalsTest : public ModuleTest {
 protected:
  // The call, with an allocation that fails after so many; whether one did.
  bool AnswerWithoutMemory(Object& util, const std::string& method, const std::vector<zq_Value>& arguments,
                           int allocations, std::string* answer) {
    zq_Value result = ZQ_VALUE_VOID;
    const zq_NativeMethod native = engine.ClassObject().methods.at(method).first;
    std::vector<zq_Value> words = arguments;
    g_allocationsUntilFailure = allocations;
    const int32_t handled = native(&util, static_cast<uint32_t>(words.size()), words.data(), &result);
    const bool failed = g_allocationsUntilFailure < 0;
    g_allocationsUntilFailure = -1;
    *answer = std::to_string(handled) + " " + engine.Show(result);
    return failed;
  }

  // What scripts and settings say, in one text.
  std::string State(Object& util) {
    Settle();
    std::string state;
    for (const char* getter : {"getPhoneVolume", "getMediaVolume", "getMicVolume", "getBrightness",
                               "getContrast", "getDimMode", "getFirstTime"}) {
      state += engine.Answer(util, getter) + " ";
    }
    for (const char* setting : {"autolight", "k"}) state += StoredSetting(setting) + " ";
    return state + StoredSetting("k", "a.ini") + (fs::is_empty("cache") ? " no cache" : " cache");
  }
};

TEST_F(RefusalsTest, WithoutMemoryAMethodDoesNothingAndSucceeds) {
  Object& util = New();
  for (const auto& [method, arguments] :
       std::map<std::string, std::vector<zq_Value>>{{"setIniSetting", {S("a"), S("k"), S("v")}},
                                                    {"setFirstTime", {S("Yes")}},
                                                    {"writeFile", {S("f"), S("v")}},
                                                    {"utf8Encode", {S("\xE4")}}}) {
    const std::string before = State(util);
    int allocations = 0;
    std::string answer;
    while (AnswerWithoutMemory(util, method, arguments, allocations, &answer)) {
      EXPECT_EQ(answer, "1 <void>") << method << " after " << allocations;
      EXPECT_EQ(State(util), before) << method << " after " << allocations;
      ++allocations;
    }
    EXPECT_GE(allocations, 1) << method << " asks for no memory";
    EXPECT_NE(State(util) + answer, before + "1 <void>") << method << " works with all it asks for";
  }
}

TEST_F(RefusalsTest, WithoutMemoryADimModeHoldsThoughItIsNotStored) {
  Object& util = New();
  std::string answer;
  ASSERT_TRUE(AnswerWithoutMemory(util, "setDimMode", {S("true")}, 0, &answer));
  EXPECT_EQ(engine.Answer(util, "getDimMode"), "TRUE");
  Settle();
  EXPECT_EQ(StoredSetting("autolight"), "<none>");
}

TEST_F(RefusalsTest, WithoutMemoryForItsNameAFileIsNotRemoved) {
  Object& util = New();
  WriteFile("a.ini", "[config]\nk=v\n");
  WriteFile("cache/f", "v");
  std::string answer;
  ASSERT_TRUE(AnswerWithoutMemory(util, "deleteIniFile", {S("a"), S("b")}, 0, &answer));
  EXPECT_EQ(answer, "1 <void>");
  ASSERT_TRUE(AnswerWithoutMemory(util, "deleteFile", {S("f")}, 0, &answer));
  EXPECT_EQ(answer, "1 <void>");
  EXPECT_TRUE(fs::exists("a.ini"));
  EXPECT_TRUE(fs::exists("cache/f"));
}

// A record that is missing, or has no name, is no network; a store whose text finds no room names none.
TEST_F(RefusalsTest, WithoutMemoryTheCurrentNetworkIsItselfOrNone) {
  const std::string none = "Name= Signal=<int 0> Encrypted=<int 0> Connected=<int 0> ";
  StoreKey("net.essid", "Home");
  StoreKey("net.wifi", "YES");
  WriteFile(OnThisMachine("/hw/ra0/link.ini"),
            "[link]\nup = yes\nassociated = yes\nessid = Home\nlevel = 196\n[address]\nip = 10.0.0.7\n");
  Object& util = New();
  const zq_NativeMethod native = engine.ClassObject().methods.at("getESSID").first;
  std::string seen;
  bool failed = true;
  for (int allocations = 0; failed; ++allocations) {
    zq_Value result = ZQ_VALUE_VOID;
    g_allocationsUntilFailure = allocations;
    EXPECT_EQ(native(&util, 0, nullptr, &result), 1);
    failed = g_allocationsUntilFailure < 0;
    g_allocationsUntilFailure = -1;
    std::string answer;
    const auto& network = *reinterpret_cast<Object*>(result);
    for (const std::string& name : network.order)
      answer += name + "=" + engine.Show(network.properties.at(name)) + " ";
    seen += answer == none ? "none " : answer;
    ASSERT_LT(allocations, 20);
  }
  // The store's text, the record and its name are asked for first, then texts of the address.
  EXPECT_EQ(seen.substr(0, 20), "none none none Name=") << seen;
  EXPECT_EQ(seen.substr(seen.rfind("Name")),
            "Name=Home Signal=<int 54> Encrypted=<int 0> Connected=<int 1> ");
}

// Every method, with each of its first allocations failing: it ends, and the module lives on.
TEST_F(RefusalsTest, NoMethodFallsOverAnAllocationThatFails) {
  // A radio whose results are there at once.
  WriteFile(OnThisMachine("/hw/ra0/link.ini"), "");
  Object& util = New();
  std::string answer;
  for (const std::string& method : engine.ClassObject().methodOrder) {
    if (method == "constructor") continue;
    for (size_t count = 0; count <= 4; ++count) {
      const std::vector<zq_Value> arguments(count, S("text"));
      for (int allocations = 0; allocations < 20; ++allocations) {
        if (!AnswerWithoutMemory(util, method, arguments, allocations, &answer)) break;
      }
    }
  }
  Settle();
  EXPECT_EQ(engine.Answer(util, "isTablet"), "no");
}

TEST_F(RefusalsTest, AMethodWithoutMemoryForItsTextsSucceedsAndChangesNothing) {
  Object& util = New();
  const std::string text(100000, 'x');
  const zq_Value word = S(text);
  zq_Value arguments[] = {word};
  zq_Value result = ZQ_VALUE_VOID;
  const zq_NativeMethod setProxy = engine.ClassObject().methods.at("setProxy").first;
  int32_t handled = 0;
  {
    const RefusedMemory refused(text.size());
    handled = setProxy(&util, 1, arguments, &result);
  }
  EXPECT_EQ(handled, 1);
  EXPECT_TRUE(trace.Has("ZQUtil has no memory for a call"));
  EXPECT_EQ(StoredKey("net.proxy"), "<none>");
}

TEST_F(RefusalsTest, AnArgumentThatCannotBecomeTextSetsNothing) {
  engine.Table()[ZQ_SLOT_VALUE_TO_STRING] =
      reinterpret_cast<uintptr_t>(+[](zq_Value, uint32_t*) -> const char* { return nullptr; });
  Object& util = New();
  const std::string before = State(util);
  for (const char* setter : {"setPhoneVolume", "setMediaVolume", "setMicVolume", "setBrightness",
                             "setContrast", "setDimMode", "setFirstTime", "deleteFile", "utf8Encode"}) {
    EXPECT_EQ(engine.Answer(util, setter, {S("1")}), "<void>") << setter;
  }
  EXPECT_EQ(engine.Answer(util, "setIniSetting", {S("a"), S("k"), S("v")}), "<void>");
  EXPECT_EQ(engine.Answer(util, "getIniSetting", {S("a"), S("k"), S("v")}), "<void>");
  EXPECT_EQ(engine.Answer(util, "writeFile", {S("f"), S("v")}), "<void>");
  EXPECT_EQ(engine.Answer(util, "deleteIniFile", {S("a"), S("b")}), "<void>");
  for (const std::string& method : engine.ClassObject().methodOrder) {
    if (method == "constructor") continue;
    for (size_t count = 1; count <= 4; ++count) {
      zq_Value result = ZQ_VALUE_VOID;
      engine.Call(util, method, std::vector<zq_Value>(count, S("1")), &result);
    }
  }
  EXPECT_EQ(State(util), before);
}

zq_Value g_notText;
zq_ValueToString g_toText;

// One of several arguments cannot become text, each in turn.
TEST_F(RefusalsTest, OneArgumentOfSeveralThatCannotBecomeTextIsEnough) {
  g_toText = reinterpret_cast<zq_ValueToString>(engine.Table()[ZQ_SLOT_VALUE_TO_STRING]);
  g_notText = BareEngine::Word(engine.NewObject());
  engine.Table()[ZQ_SLOT_VALUE_TO_STRING] =
      reinterpret_cast<uintptr_t>(+[](zq_Value value, uint32_t* scratch) -> const char* {
        return value == g_notText ? nullptr : g_toText(value, scratch);
      });
  Object& util = New();
  const std::string before = State(util);
  for (const auto& [method, count] : std::map<std::string, size_t>{{"setIniSetting", 3}, {"writeFile", 2}}) {
    for (size_t place = 0; place < count; ++place) {
      std::vector<zq_Value> arguments(count, S("a"));
      arguments[place] = g_notText;
      EXPECT_EQ(engine.Answer(util, method, arguments), "<void>") << method << " " << place;
    }
  }
  EXPECT_EQ(State(util), before);
  EXPECT_FALSE(fs::exists("a.ini"));
  EXPECT_EQ(engine.Answer(util, "getIniSetting", {g_notText, S("k"), S("d")}), "<void>");
  EXPECT_EQ(engine.Answer(util, "getIniSetting", {S("a"), g_notText, S("d")}), "<void>");
  EXPECT_EQ(engine.Answer(util, "getIniSetting", {S("a"), S("k"), g_notText}), "")
      << "no default is an empty one";
}

TEST_F(RefusalsTest, TheHttpLibraryIsPreparedOnceAndGivenBackOnce) {
  g_httpCalls.clear();
  Object& first = New();
  Object& second = New();
  EXPECT_EQ(g_httpCalls, "init ");
  Drop(first);
  Drop(second);
  EXPECT_EQ(g_httpCalls, "init term ");
}

TEST_F(RefusalsTest, AnHttpLibraryThatCouldNotBePreparedIsNotGivenBack) {
  g_httpCalls.clear();
  g_httpRefuses = true;
  Object& util = New();
  g_httpRefuses = false;
  EXPECT_EQ(engine.Answer(util, "isTablet"), "no");
  Drop(util);
  EXPECT_EQ(g_httpCalls, "init ");
  Drop(New());
  EXPECT_EQ(g_httpCalls, "init init term ");
}

TEST_F(RefusalsTest, TheEndAndTheNextBeginningWaitTenSecondsForADeadDisk) {
  New();
  Settle();
  Unload();
  uint32_t waited = 0;
  g_waited = &waited;
  ForgetTraces();
  EXPECT_EQ(MM_TermWrapper(), 0);
  EXPECT_EQ(waited, 10000U);
  EXPECT_EQ(Traces(), "ZQUtil settings writes did not end within 10000 ms\n");
  waited = 0;
  Object& util = New();
  EXPECT_EQ(waited, 10000U);
  g_waited = nullptr;
  EXPECT_EQ(engine.Answer(util, "isTablet"), "no");
}

}  // namespace
