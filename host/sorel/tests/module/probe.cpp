// A class module for tests of the host: its methods do one thing with one service each, and say what came of
// it.
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "services.h"

#define PROBE_EXPORT extern "C" __attribute__((visibility("default")))

namespace probe {
namespace {

int g_private = 1;  // what every object points to
int g_constructed = 0;
int g_finalized = 0;
std::thread::id g_scriptThread;
std::vector<std::thread> g_workers;
void* g_listener = nullptr;
void* g_stored = nullptr;

std::mutex g_mutex;
std::condition_variable g_changed;
bool g_released = false;
bool g_inside = false;

int32_t Int(int n, zq_Value* rval) {
  *rval = ZQ_VALUE_FROM_INT(n);
  return 1;
}

// To standard error, unbuffered: in the order in which things happen, whatever thread they happen on.
void Say(const std::string& text) {
  const std::string line = text + "\n";
  if (write(STDERR_FILENO, line.data(), line.size()) < 0) return;
}

int32_t Finalizer(void*) {
  if (std::this_thread::get_id() != g_scriptThread) Say("finalizer on another thread");
  if (++g_finalized > g_constructed) Say("finalizer before constructor");
  if (getenv("PROBE_SAY") != nullptr) Say("finalizer");
  return 1;
}

int32_t WaitForWorker(void*, uint32_t, zq_Value*, zq_Value* rval);

int32_t Constructor(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  if (argc > 0 && argv[0] == ZQ_VALUE_FROM_INT(0)) return 0;
  zq_Value answer = 0;
  if (argc > 0 && argv[0] == ZQ_VALUE_FROM_INT(2)) WaitForWorker(self, 0, nullptr, &answer);
  ++g_constructed;
  g_services.Get<zq_SetFinalizer>(ZQ_SLOT_SET_FINALIZER)(self, Finalizer);
  const bool bare = argc > 0 && argv[0] == ZQ_VALUE_FROM_INT(1);
  void* pointer = &g_private;
  if (!bare) g_services.Get<zq_SetPrivate>(ZQ_SLOT_SET_PRIVATE)(self, &pointer);
  if (rval != nullptr) *rval = ValueOf(self);
  return 1;
}

// 1 and the pointer is ours: the object is one of ours.
int32_t HasPrivate(void* self, uint32_t, zq_Value*, zq_Value* rval) {
  void* pointer = nullptr;
  const int32_t answer = g_services.Get<zq_GetPrivate>(ZQ_SLOT_GET_PRIVATE)(self, &pointer);
  return Int(answer == 1 && pointer == &g_private ? 1 : 0, rval);
}

int32_t NeedsPrivate(void* self, uint32_t, zq_Value*, zq_Value*) {
  void* pointer = nullptr;
  return g_services.Get<zq_GetPrivate>(ZQ_SLOT_GET_PRIVATE)(self, &pointer) == 1 ? 1 : 0;
}

int32_t Answer(void*, uint32_t, zq_Value*, zq_Value* rval) {
  return String("192.168.1.17", rval);
}
int32_t Nothing(void*, uint32_t, zq_Value*, zq_Value*) {
  return 1;
}
int32_t Fail(void*, uint32_t, zq_Value*, zq_Value*) {
  return 0;
}

// The word of the argument at the place given first, as text: "void", "null", "int N", "handle".
int32_t Word(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  const zq_Value word = argv[1];
  if (word == ZQ_VALUE_VOID) return String("void", rval);
  if (word == ZQ_VALUE_NULL) return String("null", rval);
  if ((word & 1) == 0) return String((word & 3) == 0 ? "handle" : "odd handle", rval);
  const std::string text = "int " + std::to_string(static_cast<int32_t>(static_cast<uint32_t>(word)) >> 1);
  return String(word > 0xFFFFFFFFU ? "wide int" : text.c_str(), rval);
}

int32_t Filler(void*, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  return Int(argc == 0 && argv[11] == ZQ_VALUE_VOID ? 1 : 0, rval);
}

int32_t Echo(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  const char* text = Text(argv[0]);
  return text != nullptr ? String(text, rval) : String("(null)", rval);
}

int32_t Pass(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  *rval = argv[0];
  return 1;
}

// The UTF-8 of the text in hexadecimal.
int32_t Hex(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  std::string digits;
  for (const char* c = Text(argv[0]); *c != '\0'; ++c) {
    char two[3];
    snprintf(two, sizeof two, "%02x", static_cast<unsigned char>(*c));
    digits += two;
  }
  return String(digits.c_str(), rval);
}

// A string of the bytes that the hexadecimal text names, with the second argument as length (-1: with the
// NUL).
int32_t FromHex(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  const std::string digits = Text(argv[0]);
  std::string bytes;
  for (size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return g_services.Get<zq_NewString>(ZQ_SLOT_NEW_STRING)(bytes.c_str(),
                                                          static_cast<uint32_t>(bytes.size() + 1), rval);
}

int32_t ToInt(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  int32_t number = 4711;
  const int32_t answer = g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[0], &number);
  return String((std::to_string(answer) + ":" + std::to_string(number)).c_str(), rval);
}

// A new array of `count` objects {Name: "n<i>", Id: i}.
int32_t List(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  void* array = g_services.Get<zq_NewArray>(ZQ_SLOT_NEW_ARRAY)(0, nullptr);
  int32_t count = 0;
  g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[0], &count);
  for (int32_t i = 0; i < count; ++i) {
    void* row = g_services.Get<zq_NewObject>(ZQ_SLOT_NEW_OBJECT)();
    zq_Value name = 0;
    String(("n" + std::to_string(i)).c_str(), &name);
    SetProperty(row, "Name", name);
    SetProperty(row, "Id", ZQ_VALUE_FROM_INT(i));
    zq_Value element = ValueOf(row);
    if (g_services.Get<zq_SetElement>(ZQ_SLOT_SET_ELEMENT)(array, static_cast<uint32_t>(i), &element) != 1)
      return 0;
  }
  *rval = ValueOf(array);
  return 1;
}

// Keeps the object as modules keep listeners: the handle in a field, the object on the class.
int32_t Listen(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  void* listener = nullptr;
  if (Object(argv[0], &listener) == 0) return 0;
  g_listener = listener;
  SetProperty(g_services.ClassObject(), "Listener", argv[0]);
  return Int(1, rval);
}

// Lets the object go: the handle stays in the field.
int32_t Forget(void*, uint32_t, zq_Value*, zq_Value* rval) {
  return Int(SetProperty(g_services.ClassObject(), "Listener", ZQ_VALUE_NULL), rval);
}

// Stores only the handle.
int32_t Store(void*, uint32_t, zq_Value* argv, zq_Value* rval) {
  return Int(Object(argv[0], &g_stored), rval);
}

int32_t SameHandle(void* self, uint32_t, zq_Value* argv, zq_Value* rval) {
  void* object = nullptr;
  Object(argv[0], &object);
  return Int((object == g_stored ? 1 : 0) + (object == self ? 2 : 0), rval);
}

int32_t CallStored(void*, uint32_t, zq_Value*, zq_Value* rval) {
  zq_Value result = 0;
  return Int(Call(g_stored, "on", 0, nullptr, &result), rval);
}

// Calls the listener's method of that name with the other arguments; what it returned, or "refused".
int32_t CallListener(void*, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  if (Call(g_listener, Text(argv[0]), argc - 1, argv + 1, rval) == 1) return 1;
  return String("refused", rval);
}

// What stays of values when their scope has ended: every service refuses them.
zq_Value g_oldValue = 0;
int32_t KeepValue(void*, uint32_t, zq_Value* argv, zq_Value*) {
  g_oldValue = argv[0];
  return 1;
}
int32_t UseOldValue(void* self, uint32_t, zq_Value*, zq_Value* rval) {
  int32_t number = 0;
  void* object = nullptr;
  int used = 0;
  used += Text(g_oldValue) != nullptr ? 1 : 0;
  used += g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(g_oldValue, &number);
  used += Object(g_oldValue, &object);
  used += SetProperty(self, "stale", g_oldValue);
  used += Call(g_listener, "on", 1, &g_oldValue, nullptr);
  return Int(used, rval);
}
int32_t AnswerOldValue(void*, uint32_t, zq_Value*, zq_Value* rval) {
  *rval = g_oldValue;
  return 1;
}

// Words that are nothing: every service refuses them.
int32_t UseGarbage(void*, uint32_t, zq_Value*, zq_Value* rval) {
  int used = 0;
  for (const uintptr_t word : {uintptr_t{8}, uintptr_t{0x7f0012345678}, ~uintptr_t{7}, ~uintptr_t{3}}) {
    void* object = reinterpret_cast<void*>(word);
    void* pointer = nullptr;
    used += Call(object, "on", 0, nullptr, nullptr);
    used += SetProperty(object, "x", ZQ_VALUE_FROM_INT(1));
    used += g_services.Get<zq_GetPrivate>(ZQ_SLOT_GET_PRIVATE)(object, &pointer);
    used += g_services.Get<zq_SetPrivate>(ZQ_SLOT_SET_PRIVATE)(object, &pointer);
    used += g_services.Get<zq_SetFinalizer>(ZQ_SLOT_SET_FINALIZER)(object, Finalizer);
    used += Object(word, &object);
    used += Text(word) != nullptr ? 1 : 0;
  }
  return Int(used, rval);
}

void Begin() {
  g_services.Get<zq_BeginRequest>(ZQ_SLOT_BEGIN_REQUEST)(g_services.ClassObject());
}
void End() {
  g_services.Get<zq_EndRequest>(ZQ_SLOT_END_REQUEST)(g_services.ClassObject());
}

// A thread that calls the listener's "on" `calls` times with its number and a fresh string.
void Storm(int number, int calls) {
  for (int i = 0; i < calls; ++i) {
    Begin();
    zq_Value arguments[2] = {ZQ_VALUE_FROM_INT(number), 0};
    String("text of a worker", &arguments[1]);
    Call(g_listener, "on", 2, arguments, nullptr);
    End();
  }
}

int32_t StartStorm(void*, uint32_t, zq_Value* argv, zq_Value*) {
  int32_t threads = 0;
  int32_t calls = 0;
  g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[0], &threads);
  g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[1], &calls);
  for (int i = 0; i < threads; ++i) g_workers.emplace_back(Storm, i, calls);
  return 1;
}

int32_t JoinStorm(void*, uint32_t, zq_Value*, zq_Value*) {
  for (std::thread& worker : g_workers) worker.join();
  g_workers.clear();
  return 1;
}

// Sits in the native method until a worker has called the listener and was answered.
int32_t WaitForWorker(void*, uint32_t, zq_Value*, zq_Value* rval) {
  zq_Value fromWorker = 0;
  std::thread worker([&fromWorker] {
    zq_Value result = 0;
    zq_Value argument = ZQ_VALUE_FROM_INT(20);
    Begin();
    const int32_t called = Call(g_listener, "on", 1, &argument, &result);
    fromWorker = called == 1 ? result : ZQ_VALUE_FROM_INT(-1);
    End();
  });
  worker.join();
  *rval = fromWorker;
  return 1;
}

// Sits in the native method until a listener that a worker calls meanwhile sits in another, stayInside.
int32_t WaitForInside(void*, uint32_t, zq_Value*, zq_Value*) {
  g_workers.emplace_back(Storm, 0, 1);
  std::unique_lock lock(g_mutex);
  g_changed.wait(lock, [] { return g_inside; });
  return 1;
}
// Longer than the other method takes to return.
int32_t StayInside(void*, uint32_t, zq_Value*, zq_Value*) {
  {
    const std::lock_guard lock(g_mutex);
    g_inside = true;
    g_changed.notify_all();
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  return 1;
}

// A worker makes an object without a request around it, and hands it to the listener while the script is
// idle.
int32_t CallFromLooseWorker(void*, uint32_t, zq_Value*, zq_Value*) {
  std::thread([] {
    for (int i = 0; i < 600; ++i) {
      void* row = g_services.Get<zq_NewObject>(ZQ_SLOT_NEW_OBJECT)();
      zq_Value name = 0;
      String("loose", &name);
      SetProperty(row, "Name", name);
      zq_Value argument = ValueOf(row);
      const bool last = i == 599;
      g_services.Get<zq_CallMethodWithArgs>(ZQ_SLOT_CALL_METHOD_WITH_ARGS)(g_listener, last ? "onLast" : "on",
                                                                           1, &argument);
    }
  }).detach();
  return 1;
}

// Calls the listener until the host refuses; says so, and that it never was served again.
int32_t CallUntilRefused(void*, uint32_t, zq_Value*, zq_Value*) {
  g_workers.emplace_back([] {
    zq_Value argument = ZQ_VALUE_FROM_INT(1);
    while (Call(g_listener, "on", 1, &argument, nullptr) == 1) {
    }
    zq_Value string = 0;
    const bool refused = String("x", &string) == 0 && Text(ZQ_VALUE_FROM_INT(1)) == nullptr &&
                         g_services.Get<zq_NewObject>(ZQ_SLOT_NEW_OBJECT)() == nullptr;
    const std::lock_guard lock(g_mutex);
    Say(refused ? "worker refused" : "worker served");
    g_released = true;
    g_changed.notify_all();
  });
  return 1;
}

// Sets the listener's property "value" and asks for its text, on and on, until the host refuses.
int32_t UseListenerUntilRefused(void*, uint32_t, zq_Value*, zq_Value*) {
  g_workers.emplace_back([] {
    bool served = true;
    while (served) {
      Begin();
      served =
          SetProperty(g_listener, "value", ZQ_VALUE_FROM_INT(1)) == 1 && Text(ValueOf(g_listener)) != nullptr;
      End();
    }
  });
  return 1;
}

int32_t Counts(void*, uint32_t, zq_Value*, zq_Value* rval) {
  return String((std::to_string(g_constructed) + "/" + std::to_string(g_finalized)).c_str(), rval);
}

int32_t Sleep(void*, uint32_t, zq_Value* argv, zq_Value*) {
  int32_t milliseconds = 0;
  g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[0], &milliseconds);
  if (getenv("PROBE_SAY") != nullptr) Say("sleeps");
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  return 1;
}

// Ends the process as modules do, without a word to the host.
int32_t EndProcess(void*, uint32_t, zq_Value* argv, zq_Value*) {
  int32_t status = 0;
  g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[0], &status);
  std::thread([status] { quick_exit(status); }).join();
  return 1;
}

// The same after so many milliseconds, while the script goes on.
int32_t EndProcessLater(void*, uint32_t, zq_Value* argv, zq_Value*) {
  int32_t status = 0;
  int32_t milliseconds = 0;
  g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[0], &status);
  g_services.Get<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT)(argv[1], &milliseconds);
  std::thread([status, milliseconds] {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    quick_exit(status);
  }).detach();
  return 1;
}

struct Row {
  const char* name;
  zq_NativeMethod method;
  uint32_t declared;
};

constexpr Row kMethods[] = {
    {"constructor", Constructor, 0},
    {"hasPrivate", HasPrivate, 0},
    {"needsPrivate", NeedsPrivate, 0},
    {"answer", Answer, 0},
    {"nothing", Nothing, 0},
    {"fail", Fail, 0},
    {"word", Word, 2},
    {"filler", Filler, 12},
    {"echo", Echo, 1},
    {"pass", Pass, 1},
    {"hex", Hex, 1},
    {"fromHex", FromHex, 1},
    {"toInt", ToInt, 1},
    {"list", List, 1},
    {"listen", Listen, 1},
    {"forget", Forget, 0},
    {"store", Store, 1},
    {"sameHandle", SameHandle, 1},
    {"callStored", CallStored, 0},
    {"callListener", CallListener, 1},
    {"keepValue", KeepValue, 1},
    {"useOldValue", UseOldValue, 0},
    {"answerOldValue", AnswerOldValue, 0},
    {"useGarbage", UseGarbage, 0},
    {"startStorm", StartStorm, 2},
    {"joinStorm", JoinStorm, 0},
    {"waitForWorker", WaitForWorker, 0},
    {"waitForInside", WaitForInside, 0},
    {"stayInside", StayInside, 0},
    {"callFromLooseWorker", CallFromLooseWorker, 0},
    {"callUntilRefused", CallUntilRefused, 0},
    {"useListenerUntilRefused", UseListenerUntilRefused, 0},
    {"counts", Counts, 0},
    {"endProcess", EndProcess, 1},
    {"endProcessLater", EndProcessLater, 2},
    {"sleep", Sleep, 1},
};

}  // namespace
}  // namespace probe

PROBE_EXPORT void MM_Load() {
  if (getenv("PROBE_SAY") != nullptr) probe::Say("load");
}

PROBE_EXPORT void MM_Unload() {
  if (getenv("PROBE_SAY") != nullptr) probe::Say("unload");
}

PROBE_EXPORT int32_t MM_InitWrapper(void* table, uint32_t bytes) {
  using namespace probe;
  g_services.Copy(table, bytes);
  g_scriptThread = std::this_thread::get_id();
  if (getenv("PROBE_SAY") != nullptr) Say("init");
  Log("probe starts\n");
  for (const Row& row : kMethods) {
    const auto define = g_services.Get<zq_DefineMethod>(ZQ_SLOT_DEFINE_METHOD);
    if (define(g_services.ClassObject(), row.name, row.method, row.declared) != 1) return 0;
  }
  return 1;
}

PROBE_EXPORT int32_t MM_TermWrapper() {
  using namespace probe;
  if (getenv("PROBE_SAY") != nullptr) Say("term");
  JoinStorm(nullptr, 0, nullptr, nullptr);
  return 1;
}
