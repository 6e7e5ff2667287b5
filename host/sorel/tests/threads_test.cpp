// Worker threads of modules that call into scripts.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

struct Threads : testing::Test {
  SorelRun run;
};

TEST_F(Threads, AWorkerCallsAListenerWhileTheScriptSitsInANativeMethod) {
  EXPECT_EQ(run.Output("const p = new Probe();\np.listen({on(n) { return n + 1; }});\n"
                       "print(p.waitForWorker());\nexit(0);"),
            "21");
}
TEST_F(Threads, AWorkerCallsAListenerWhileTheScriptSitsInAConstructor) {
  EXPECT_EQ(run.Output("const p = new Probe();\nlet heard = 0;\np.listen({on(n) { heard = n; }});\n"
                       "new Probe(2);\nprint(heard);\nexit(0);"),
            "20");
}
TEST_F(Threads, AWorkerCallsAListenerWhileAListenersMethodWaitsForIt) {
  EXPECT_EQ(run.Output("const p = new Probe();\n"
                       "p.listen({on(n) { return n + 1; }, outer() { return p.waitForWorker() + 1; }});\n"
                       "print(p.callListener('outer') + 1);\nexit(0);"),
            "23");
}
TEST_F(Threads, AMethodComesBackOnceTheListenerThatRanMeanwhileIsThrough) {
  EXPECT_EQ(run.Output("const p = new Probe();\nlet said = [];\n"
                       "p.listen({on() { said.push('in'); p.stayInside(); said.push('out'); }});\n"
                       "p.waitForInside();\nsaid.push('back');\nprint(said);\nexit(0);"),
            "in,out,back");
}
TEST_F(Threads, AWorkerCallsAListenerWhileTheScriptIsIdle) {
  EXPECT_EQ(run.Output("const p = new Probe();\nlet calls = 0;\n"
                       "p.listen({on(row) { if (row.Name === 'loose') ++calls; },"
                       " onLast(row) { print(calls, row.Name); exit(0); }});\n"
                       "p.callFromLooseWorker();"),
            "599 loose");
}
TEST_F(Threads, ListenersMaySetTimersFromAnyThread) {
  EXPECT_EQ(
      run.Output(
          "const p = new Probe();\n"
          "p.listen({on() {}, onLast() { setTimeout(t => { print('timer', t); exit(0); }, 1, 'set'); }});\n"
          "p.callFromLooseWorker();"),
      "timer set");
}
TEST_F(Threads, StormsOfCallsMeetTheScriptsOwn) {
  EXPECT_EQ(
      run.Output(
          "const p = new Probe();\nlet calls = 0, wrong = 0;\n"
          "p.listen({on(n, text) { ++calls; if (text !== 'text of a worker') ++wrong; p.answer(); }});\n"
          "p.startStorm(10, 1000);\n"
          "for (let i = 0; i < 2000; ++i) { if (p.answer() !== '192.168.1.17') ++wrong; p.list(3); }\n"
          "p.joinStorm();\nprint(calls, wrong);\nexit(0);"),
      "10000 0");
}
// What scripts say in the tests that follow is noise, whose last line tells.
std::string LastLine(const std::string& output) {
  const size_t end = output.find_last_not_of('\n') + 1;
  const size_t begin = output.rfind('\n', end - 1) + 1;
  return output.substr(begin, end - begin);
}

struct Turns : Threads {
  // A worker calls the listener all the time, until the script ends by itself.
  std::string Told(const std::string& script) {
    const ProgramResult result = run.Run("const p = new Probe();\nlet calls = 0, torn = 0, rounds = 0;\n" +
                                         script + "\np.callUntilRefused();");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "worker refused\n");
    return LastLine(result.output);
  }
};

TEST_F(Turns, AListenerNeverBeginsInAFunctionThatPrintsAndSetsTimers) {
  EXPECT_EQ(Told("p.listen({on() { ++calls; }});\n"
                 "setInterval(() => {\n"
                 "  const before = calls;\n"
                 "  for (let i = 0; i < 20; ++i) { print(i); clearTimeout(setTimeout(() => {}, 1000)); }\n"
                 "  if (calls !== before) ++torn;\n"
                 "  if (++rounds >= 100 && calls > 100) { print('torn', torn); exit(0); }\n"
                 "}, 1);"),
            "torn 0");
}
TEST_F(Turns, AFunctionNeverBeginsInAListenerThatPrintsAndSetsTimers) {
  EXPECT_EQ(Told("p.listen({on() {\n"
                 "  const before = rounds;\n"
                 "  for (let i = 0; i < 20; ++i) { print(i); clearTimeout(setTimeout(() => {}, 1000)); }\n"
                 "  if (rounds !== before) ++torn;\n"
                 "  if (++calls >= 100 && rounds > 100) { print('torn', torn); exit(0); }\n"
                 "}});\n"
                 "setInterval(() => { ++rounds; }, 1);"),
            "torn 0");
}
TEST_F(Turns, ALoadedScriptAndItsLoaderAreOneFunctionToListeners) {
  run.AddFile("part.js", "for (let i = 0; i < 20; ++i) console.log({i});");
  EXPECT_EQ(Told("p.listen({on() { ++calls; }});\n"
                 "setInterval(() => {\n"
                 "  const before = calls;\n"
                 "  load('part.js');\n"
                 "  if (rounds % 20 === 0) gc();\n"
                 "  if (calls !== before) ++torn;\n"
                 "  if (++rounds >= 100 && calls > 100) { print('torn', torn); exit(0); }\n"
                 "}, 1);"),
            "torn 0");
}
TEST_F(Turns, TheJobsOfAFunctionAreDoneBeforeAListenerBegins) {
  EXPECT_EQ(Told("p.listen({on() { ++calls; }});\n"
                 "setInterval(async () => {\n"
                 "  const before = calls;\n"
                 "  for (let i = 0; i < 20; ++i) { await null; print(i); }\n"
                 "  if (calls !== before) ++torn;\n"
                 "  if (++rounds >= 100 && calls > 100) { print('torn', torn); exit(0); }\n"
                 "}, 1);"),
            "torn 0");
}
TEST_F(Turns, TheJobsOfAListenerAreDoneBeforeAFunctionBegins) {
  EXPECT_EQ(Told("p.listen({async on() {\n"
                 "  const before = rounds;\n"
                 "  for (let i = 0; i < 20; ++i) { await null; print(i); }\n"
                 "  if (rounds !== before) ++torn;\n"
                 "  if (++calls >= 100 && rounds > 100) { print('torn', torn); exit(0); }\n"
                 "}});\n"
                 "setInterval(() => { ++rounds; }, 1);"),
            "torn 0");
}
// The engine has one list of jobs, and the function's own may not come before its end.
TEST_F(Turns, TheJobsOfAListenerWaitForTheFunctionInWhoseMethodItRan) {
  EXPECT_EQ(
      run.Output(
          "const p = new Probe();\nconst said = [];\n"
          "p.listen({on() { said.push('listener'); Promise.resolve().then(() => said.push('its job')); }});\n"
          "setTimeout(() => { print(said); exit(0); }, 1);\n"
          "p.waitForWorker();\nsaid.push('function');"),
      "listener,function,its job");
}
TEST_F(Turns, ASetterAndATextOfAnObjectAreScriptCodeToo) {
  EXPECT_EQ(
      Told("let inside = false;\n"
           "const work = () => { inside = true; for (let i = 0; i < 20; ++i) print(i); inside = false; };\n"
           "p.listen({set value(v) { work(); }, toString() { work(); return 'text'; },\n"
           "          on() { ++calls; if (inside) ++torn; }});\n"
           "p.useListenerUntilRefused();\n"
           "setInterval(() => {\n"
           "  if (inside) ++torn;\n"
           "  if (++rounds >= 100 && calls > 100) { print('torn', torn); exit(0); }\n"
           "}, 1);"),
      "torn 0");
}

TEST_F(Threads, AListenerThatWaitsForTheScriptIsRefusedWhenThatEnds) {
  const ProgramResult result = run.Run(
      "const p = new Probe();\np.listen({on() {}});\np.callUntilRefused();\n"
      "setTimeout(() => { const end = Date.now() + 200; while (Date.now() < end); exit(7); }, 5);");
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "worker refused\n");
}
TEST_F(Threads, CallsAreRefusedOnceTheHostBeganToEnd) {
  const ProgramResult result = run.Run(
      "const p = new Probe();\nlet calls = 0;\n"
      "p.listen({on() { if (++calls === 100) exit(7); }});\n"
      "p.callUntilRefused();");
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "worker refused\n");
}
TEST_F(Threads, TheProgramEndsWithTimersAndWorkersUnderWay) {
  const ProgramResult result = run.Run(
      "const p = new Probe();\np.listen({on() {}});\nsetInterval(() => {}, 1);\nsetTimeout(() => {}, "
      "100000);\n"
      "p.startStorm(4, 100000);\nsetTimeout(() => exit(3), 5);");
  EXPECT_EQ(result.status, 3) << result.errors;
  EXPECT_EQ(result.errors, "");
}

}  // namespace
