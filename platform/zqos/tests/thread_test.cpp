#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <future>
#include <set>
#include <string>

#include "trace_capture.h"
#include "zq_thread.h"
#include "zq_trace.h"

namespace {

constexpr uint32_t kLong = 60'000;

uint32_t Begin(zq_ThreadFunction function, void* argument, size_t stackBytes = 0) {
  const zq_ThreadAttributes attributes{stackBytes};
  return zq__beginthread(function, argument, &attributes, "caller.cpp", 7);
}

// Runs until the gate opens.
struct Gate {
  std::promise<void> entered;
  std::promise<void> open;
};

int32_t WaitAtGate(void* argument) {
  auto* gate = static_cast<Gate*>(argument);
  gate->entered.set_value();
  gate->open.get_future().wait();
  return 0;
}

int32_t Count(void* argument) {
  ++*static_cast<std::atomic<int>*>(argument);
  return 0;
}

TEST(Thread, RunsItsFunctionWithTheArgument) {
  std::atomic<int> count{0};
  EXPECT_NE(zq__beginthread(&Count, &count, nullptr, __FILE__, __LINE__), 0U);
  EXPECT_TRUE(zq_ThreadAwaitEnd(&Count, kLong));
  EXPECT_EQ(count, 1);
}

TEST(Thread, ANullFunctionIsRefused) {
  const TraceCapture trace;
  EXPECT_EQ(Begin(nullptr, nullptr), 0U);
  EXPECT_TRUE(trace.Has("no thread: Invalid argument (caller.cpp:7)"));
}

TEST(Thread, HandlesOfLivingThreadsDiffer) {
  constexpr int kThreads = 20;
  Gate gates[kThreads];
  std::set<uint32_t> handles;
  for (Gate& gate : gates) handles.insert(Begin(&WaitAtGate, &gate));
  EXPECT_EQ(handles.size(), static_cast<size_t>(kThreads));
  EXPECT_EQ(handles.count(0), 0U);
  for (Gate& gate : gates) gate.open.set_value();
  EXPECT_TRUE(zq_ThreadAwaitEnd(&WaitAtGate, kLong));
}

TEST(Thread, AwaitEndSaysFalseWhileOneIsLeft) {
  Gate first;
  Gate second;
  Begin(&WaitAtGate, &first);
  Begin(&WaitAtGate, &second);
  EXPECT_FALSE(zq_ThreadAwaitEnd(&WaitAtGate, 0));
  first.open.set_value();
  EXPECT_FALSE(zq_ThreadAwaitEnd(&WaitAtGate, 1));
  second.open.set_value();
  EXPECT_TRUE(zq_ThreadAwaitEnd(&WaitAtGate, kLong));
}

TEST(Thread, AwaitEndOfAFunctionThatNeverRanIsImmediate) {
  EXPECT_TRUE(zq_ThreadAwaitEnd([](void*) { return int32_t{0}; }, 0));
}

int32_t AwaitOwnKind(void* argument) {
  static_cast<std::promise<bool>*>(argument)->set_value(zq_ThreadAwaitEnd(&AwaitOwnKind, kLong));
  return 0;
}

TEST(Thread, AwaitEndDoesNotCountItsCaller) {
  std::promise<bool> answer;
  std::future<bool> said = answer.get_future();
  Begin(&AwaitOwnKind, &answer);
  EXPECT_TRUE(said.get());
  EXPECT_TRUE(zq_ThreadAwaitEnd(&AwaitOwnKind, kLong));
}

struct TellsAtItsEnd {
  std::atomic<bool>* told = nullptr;
  ~TellsAtItsEnd() {
    if (told != nullptr) *told = true;
  }
};

thread_local TellsAtItsEnd t_last;

int32_t LeaveSomethingInThreadStorage(void* told) {
  t_last.told = static_cast<std::atomic<bool>*>(told);
  return 0;
}

TEST(Thread, EndsForItsWaitersOnlyAfterItsThreadStorageIsGone) {
  std::atomic<bool> told{false};
  Begin(&LeaveSomethingInThreadStorage, &told);
  EXPECT_TRUE(zq_ThreadAwaitEnd(&LeaveSomethingInThreadStorage, kLong));
  EXPECT_TRUE(told);
}

int32_t ExitEarly(void*) {
  pthread_exit(nullptr);
}

TEST(Thread, ThatExitsInTheMiddleOfItsFunctionIsGoneToo) {
  Begin(&ExitEarly, nullptr);
  EXPECT_TRUE(zq_ThreadAwaitEnd(&ExitEarly, kLong));
}

TEST(Thread, TenThousandAreStartedAndAwaited) {
  constexpr int kThreads = 10'000;
  constexpr int kAtOnce = 50;  // what a small machine gives
  std::atomic<int> count{0};
  for (int started = 0; started < kThreads; started += kAtOnce) {
    for (int i = 0; i < kAtOnce; ++i) ASSERT_NE(Begin(&Count, &count, 64 << 10), 0U);
    ASSERT_TRUE(zq_ThreadAwaitEnd(&Count, kLong));
  }
  EXPECT_EQ(count, kThreads);
}

TEST(Thread, AStackThatTheSystemCannotGiveIsReportedAsZero) {
  const TraceCapture trace;
  EXPECT_EQ(Begin(&Count, nullptr, SIZE_MAX), 0U);
  EXPECT_EQ(Begin(&Count, nullptr, SIZE_MAX - (size_t{1} << 20)), 0U);
  ASSERT_EQ(trace.Lines().size(), 2U);
  EXPECT_EQ(trace.Lines()[1].level, 30000);
  EXPECT_THAT(trace.Texts()[1], testing::MatchesRegex("no thread: .* \\(caller.cpp:7\\)"));
  EXPECT_TRUE(zq_ThreadAwaitEnd(&Count, 0)) << "a thread that never began is not waited for";
}

TEST(Thread, ATinyStackIsRaisedToWhatTheSystemNeeds) {
  std::atomic<int> count{0};
  EXPECT_NE(Begin(&Count, &count, 1), 0U);
  EXPECT_TRUE(zq_ThreadAwaitEnd(&Count, kLong));
  EXPECT_EQ(count, 1);
}

// The process's address space from now on, in bytes.
void LimitAddressSpaceTo(size_t more) {
  size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  const rlim_t limit = pages * static_cast<size_t>(sysconf(_SC_PAGESIZE)) + more;
  const rlimit limits{limit, limit};
  setrlimit(RLIMIT_AS, &limits);
}

// Starts threads until the system gives no more, lets them go, and starts one again. In a process of its own.
[[noreturn]] void ExhaustThreads() {
  constexpr size_t kStack = size_t{512} << 20;
  constexpr int kMost = 16;
  static Gate gates[kMost];
  LimitAddressSpaceTo(4 * kStack + kStack / 2);
  int started = 0;
  while (started < kMost && Begin(&WaitAtGate, &gates[started], kStack) != 0) ++started;
  const bool exhausted = started > 0 && started < kMost;
  for (int i = 0; i < started; ++i) gates[i].open.set_value();
  const bool ended = zq_ThreadAwaitEnd(&WaitAtGate, kLong);
  std::atomic<int> count{0};
  const bool again = Begin(&Count, &count) != 0 && zq_ThreadAwaitEnd(&Count, kLong) && count == 1;
  _exit(exhausted && ended && again ? 0 : 1);
}

TEST(ThreadDeathTest, ExhaustionIsReportedAsZeroAndPassesWithTheThreads) {
  EXPECT_EXIT(ExhaustThreads(), testing::ExitedWithCode(0), "");
}

std::string NameOf(pthread_t thread) {
  char name[16] = "";
  pthread_getname_np(thread, name, sizeof name);
  return name;
}

struct Named {
  std::promise<pthread_t> self;
  std::promise<void> leave;
};

int32_t BeNamed(void* argument) {
  auto* named = static_cast<Named*>(argument);
  named->self.set_value(pthread_self());
  named->leave.get_future().wait();
  return 0;
}

TEST(ThreadName, IsCutToFifteenCharacters) {
  Named named;
  const uint32_t handle = Begin(&BeNamed, &named);
  zq_ThreadSetName(handle, "a name that is far too long");
  const pthread_t thread = named.self.get_future().get();
  EXPECT_EQ(NameOf(thread), "a name that is ");
  zq_ThreadSetName(handle, "");
  EXPECT_EQ(NameOf(thread), "");
  zq_ThreadSetName(handle, "short");
  zq_ThreadSetName(handle, nullptr);
  EXPECT_EQ(NameOf(thread), "short");
  named.leave.set_value();
  EXPECT_TRUE(zq_ThreadAwaitEnd(&BeNamed, kLong));
  zq_ThreadSetName(handle, "too late");
}

TEST(ThreadName, OfHandleZeroIsTheCallers) {
  const std::string before = NameOf(pthread_self());
  zq_ThreadSetName(0, "myself");
  EXPECT_EQ(NameOf(pthread_self()), "myself");
  zq_ThreadSetName(0, before.c_str());
}

TEST(ThreadName, OfAHandleThatNeverWasIsIgnored) {
  const std::string before = NameOf(pthread_self());
  zq_ThreadSetName(0xFFFFFFF0U, "nobody");
  EXPECT_EQ(NameOf(pthread_self()), before);
}

int32_t ReadMask(void* argument) {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  static_cast<std::promise<sigset_t>*>(argument)->set_value(mask);
  return 0;
}

sigset_t MaskInThread() {
  std::promise<sigset_t> mask;
  Begin(&ReadMask, &mask);
  const sigset_t result = mask.get_future().get();
  zq_ThreadAwaitEnd(&ReadMask, kLong);
  return result;
}

TEST(ThreadSignals, OnlyOwnFaultsTheProfilersAndTheEnginesAreOpen) {
  const sigset_t mask = MaskInThread();
  for (const int open : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGPROF, SIGUSR1}) {
    EXPECT_EQ(sigismember(&mask, open), 0) << open;
  }
  for (const int blocked : {SIGINT, SIGTERM, SIGHUP, SIGCHLD, SIGPIPE, SIGALRM, SIGUSR2, SIGRTMIN}) {
    EXPECT_EQ(sigismember(&mask, blocked), 1) << blocked;
  }
}

TEST(ThreadSignals, TheCallersMaskStaysAsItWas) {
  sigset_t before;
  sigset_t after;
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  MaskInThread();
  pthread_sigmask(SIG_SETMASK, nullptr, &after);
  for (int number = 1; number < NSIG; ++number) {
    EXPECT_EQ(sigismember(&before, number), sigismember(&after, number)) << number;
  }
}

sigset_t MaskWithEngineSignal(const std::string& value) {
  setenv("JSC_SIGNAL_FOR_GC", value.c_str(), 1);
  const sigset_t mask = MaskInThread();
  unsetenv("JSC_SIGNAL_FOR_GC");
  return mask;
}

TEST(ThreadSignals, AnotherEngineSignalIsLeftOpenInsteadOfTheUsualOne) {
  const sigset_t mask = MaskWithEngineSignal(std::to_string(SIGUSR2));
  EXPECT_EQ(sigismember(&mask, SIGUSR2), 0);
  EXPECT_EQ(sigismember(&mask, SIGUSR1), 1);
}

TEST(ThreadSignals, AnEngineSignalThatIsNoneCountsAsUnset) {
  const std::string beyond = std::to_string(NSIG);
  for (const std::string& nonsense : {std::string(), std::string("0"), std::string("-1"), beyond,
                                      std::to_string(SIGUSR2) + "x", std::string("99999999999999999999")}) {
    const sigset_t mask = MaskWithEngineSignal(nonsense);
    EXPECT_EQ(sigismember(&mask, SIGUSR1), 0) << nonsense;
    EXPECT_EQ(sigismember(&mask, SIGUSR2), 1) << nonsense;
  }
}

int32_t TraceForEver(void*) {
  for (;;) zq_Trace(0, 10000, 1, false, "still at work");
}

struct DestroyedLate {
  ~DestroyedLate() { fputs("destructor ran\n", stderr); }
};

TEST(ExitProcessDeathTest, EndsAtOnceWithItsStatusWhileThreadsAreAtWork) {
  EXPECT_EXIT(
      {
        static const DestroyedLate late;
        at_quick_exit([] { fputs("quick exit handler ran\n", stderr); });
        zq_TraceRedirect("/dev/null", 0);
        for (int i = 0; i < 4; ++i) Begin(&TraceForEver, nullptr);
        Begin([](void*) -> int32_t { zq_ExitProcess(23); }, nullptr);
        for (;;) sched_yield();
      },
      testing::ExitedWithCode(23), "^quick exit handler ran\n$");
}

}  // namespace
